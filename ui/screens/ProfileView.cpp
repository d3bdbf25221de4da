#include "ProfileView.h"

#include "AppModel.h"
#include "QSProfile.h"
#include "VxPanel.h"
#include "VxText.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

ProfileView::ProfileView(AppModel &model, QWidget *parent) : QWidget(parent), m_model(model)
{
    auto *area = new QScrollArea(this);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(createFields());
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->addWidget(area);
    setFocusProxy(m_lines.value(QSProfile::fields.front().key.toString()));
}

QWidget *ProfileView::createFields()
{
    auto *page = new QWidget(this);
    page->setProperty("clear", true);
    auto *panel = new VxPanel(page);
    panel->column()->addWidget(
        VxText::make(u"Details used to fill templates"_s, VxText::Role::heading, panel));
    panel->column()->addWidget(VxText::make(
        u"These details are saved only on this Mac. When you start a new Vell template, fields "
        "marked with the person icon fill in from here."_s,
        VxText::Role::note, panel));

    auto *grid = new QGridLayout;
    int row = 0;
    for (const QSProfile::Field &field : QSProfile::fields) {
        const QString key = field.key.toString();
        auto *label = new QLabel(field.label.toString(), panel);
        auto *line = new QLineEdit(panel);
        label->setBuddy(line);
        line->setAccessibleName(label->text());
        connect(line, &QLineEdit::textEdited, this,
                [this, key](const QString &text) { m_model.setProfileValue(key, text); });
        grid->addWidget(label, row, 0);
        grid->addWidget(line, row, 1);
        m_lines.insert(key, line);
        ++row;
    }
    panel->column()->addLayout(grid);
    panel->column()->addWidget(createSaveRow());

    auto *column = new QVBoxLayout(page);
    column->setContentsMargins({});
    column->addWidget(panel);
    column->addStretch();
    panel->setMaximumWidth(fontMetrics().height() * 44);
    return page;
}

QWidget *ProfileView::createSaveRow()
{
    auto *row = new QWidget(this);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    auto *save = new QPushButton(u"Save profile"_s, row);
    save->setProperty("primary", true);
    connect(save, &QPushButton::clicked, &m_model, &AppModel::saveProfile);
    m_state = VxText::make({}, VxText::Role::note, row);
    connect(&m_model, &AppModel::profileEdited, this, [this] {
        m_state->setText(m_model.hasUnsavedProfile() ? u"Not saved yet"_s : u"Saved"_s);
    });
    layout->addWidget(save);
    layout->addWidget(m_state, 1);
    return row;
}

void ProfileView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    const QMap<QString, QString> profile = m_model.profile();
    for (auto line = m_lines.cbegin(); line != m_lines.cend(); ++line) {
        line.value()->setText(profile.value(line.key()));
    }
}
