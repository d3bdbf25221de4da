#include "VellThemeRoot.h"

#include "VellStyle.h"
#include "VxScale.h"
#include "VxZoom.h"

#include <QApplication>
#include <QWidget>

using namespace Qt::Literals::StringLiterals;

namespace {
VellThemeRoot *shared = nullptr;

/// In the interface's typeface, where it is installed.
QFont typeface(QFont font)
{
    font.setFamilies({u"Inter"_s, font.family()});
    return font;
}
} // namespace

VellThemeRoot::VellThemeRoot(QApplication &application)
    : QObject(&application), m_application(application), m_font(typeface(QApplication::font()))
{
    shared = this;
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
        QFont font = m_font;
        font.setPointSizeF(m_font.pointSizeF() * zoom);
        QApplication::setFont(font);
        for (QWidget *window : windows) {
            VxScale::scale(window, zoom / m_zoom);
        }
    }
    m_theme = theme;
    m_zoom = zoom;
    VellStyle::apply(m_application, theme);
    for (QWidget *window : windows) {
        window->setUpdatesEnabled(true);
    }
}
