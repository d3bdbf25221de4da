#include "VxSearch.h"

#include "VxIcon.h"

#include <QAction>
#include <QLineEdit>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

namespace VxSearch {
void dress(QLineEdit *field)
{
    field->setClearButtonEnabled(true);
    for (QToolButton *clear : field->findChildren<QToolButton *>()) {
        clear->setAccessibleName(u"Clear the search"_s);
    }
    QAction *glass =
        field->addAction(VxIcon::named(u"magnifyingglass"_s), QLineEdit::LeadingPosition);
    glass->setText(u"Search"_s);
    glass->setToolTip({});
}
} // namespace VxSearch
