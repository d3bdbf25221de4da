#include "SearchField.h"

#include "AppModel.h"
#include "VxSearch.h"

#include <QKeyEvent>

using namespace Qt::Literals::StringLiterals;

SearchField::SearchField(AppModel &model, QWidget *parent) : QLineEdit(parent)
{
    const QString prompt = u"Search forms and templates"_s;
    setPlaceholderText(prompt);
    setAccessibleName(prompt);
    VxSearch::dress(this);
    connect(this, &QLineEdit::textChanged, &model, &AppModel::setSearch);
    connect(&model, &AppModel::searchChanged, this, [this, &model] {
        if (text() != model.search()) {
            setText(model.search());
        }
    });
}

QSize SearchField::sizeHint() const
{
    return {fontMetrics().height() * 18, QLineEdit::sizeHint().height()}; // the prompt and more
}

void SearchField::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        clear();
        break;
    case Qt::Key_Down:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT leaveForResults();
        break;
    default:
        QLineEdit::keyPressEvent(event);
    }
}
