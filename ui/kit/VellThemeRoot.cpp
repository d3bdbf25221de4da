#include "VellThemeRoot.h"

#include "VellStyle.h"
#include "VxRoles.h"
#include "VxScale.h"
#include "VxZoom.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QEvent>
#include <QSet>

#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
VellThemeRoot *shared = nullptr;

/// In the interface's typeface, where it is installed.
QFont typeface(QFont font)
{
    font.setFamilies({u"Inter"_s, font.family()});
    return font;
}

/// While it lives, no list, table or other scrolled widget lays itself out anew for another style:
/// each would do so several times, for texts whose style is still to come. They do it afterwards,
/// once; those that nobody sees when the others have been painted.
class LayoutOnce final : public QObject
{
public:
    LayoutOnce() { qApp->installEventFilter(this); }
    ~LayoutOnce() override
    {
        qApp->removeEventFilter(this);
        for (QAbstractScrollArea *area : std::as_const(m_areas)) {
            QCoreApplication::postEvent(
                area, std::make_unique<QEvent>(QEvent::StyleChange).release(),
                area->isVisible() ? Qt::NormalEventPriority : afterPainting);
        }
    }
    Q_DISABLE_COPY_MOVE(LayoutOnce)

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *area = event->type() == QEvent::StyleChange
                         ? qobject_cast<QAbstractScrollArea *>(watched)
                         : nullptr;
        if (area) {
            m_areas.insert(area);
        }
        return area;
    }

private:
    static constexpr int afterPainting = Qt::LowEventPriority - 1;

    QSet<QAbstractScrollArea *> m_areas;
};
} // namespace

VellThemeRoot::VellThemeRoot(QApplication &application)
    : QObject(&application), m_application(application), m_font(typeface(QApplication::font()))
{
    shared = this;
    VxRoles::install();
    show(VellThemes::current(), VxZoom::value());
}

VellThemeRoot::~VellThemeRoot()
{
    shared = nullptr;
}

VellThemeRoot *VellThemeRoot::instance()
{
    return shared;
}

const VellTheme &VellThemeRoot::theme()
{
    static VellTheme unshown;
    return shared ? shared->m_theme : (unshown = VellThemes::current());
}

void VellThemeRoot::refresh()
{
    if (!shared) {
        return;
    }
    const VellTheme theme = VellThemes::current();
    const double zoom = VxZoom::value();
    if (theme != shared->m_theme || !qFuzzyCompare(zoom, shared->m_zoom)) {
        Q_EMIT shared->aboutToChange();
        shared->show(theme, zoom);
        Q_EMIT shared->changed();
    }
}

void VellThemeRoot::show(const VellTheme &theme, double zoom)
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        window->setUpdatesEnabled(false);
    }
    if (!qFuzzyCompare(zoom, m_zoom) || m_theme.id.isEmpty()) {
        for (QWidget *window : windows) {
            VxScale::scale(window, zoom / m_zoom);
        }
        QFont font = m_font; // after the lengths: those that nobody set go by it
        font.setPointSizeF(m_font.pointSizeF() * zoom);
        QApplication::setFont(font);
    }
    m_theme = theme;
    m_zoom = zoom;
    {
        const LayoutOnce once;
        VellStyle::apply(m_application, theme);
    }
    for (QWidget *window : windows) {
        window->setUpdatesEnabled(true);
    }
}
