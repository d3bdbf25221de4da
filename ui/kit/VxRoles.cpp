#include "VxRoles.h"

#include <QAccessibleWidget>
#include <QScrollArea>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {
class Pane final : public QAccessibleWidget
{
public:
    explicit Pane(QWidget *area) : QAccessibleWidget(area, QAccessible::Pane) {}
};

/// The caller owns it. Classes are asked for from the derived ones on, so lists and texts, which
/// have roles of their own, don't come here.
QAccessibleInterface *accessible(const QString &type, QObject *object)
{
    const bool isArea = type == u"QScrollArea"_s || type == u"QAbstractScrollArea"_s;
    return isArea ? std::make_unique<Pane>(qobject_cast<QWidget *>(object)).release() : nullptr;
}
} // namespace

namespace VxRoles {
void install()
{
    QAccessible::installFactory(accessible);
}
} // namespace VxRoles
