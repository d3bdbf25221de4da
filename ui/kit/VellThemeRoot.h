#pragma once

#include "VellTheme.h"

#include <QFont>
#include <QObject>

class QApplication;

/// Gives the whole program the look that the preferences name: the theme's colours, and every
/// length and letter at the interface's zoom. There is one, owned by the application; open windows
/// follow it at once. Main thread only.
///
/// Widgets take their lengths from their font while they are made. When the zoom changes, those
/// set as margins, spacings, smallest, largest and icon sizes are scaled along with the font;
/// whatever else depends on it has to be computed anew when it is painted or measured.
class VellThemeRoot final : public QObject
{
    Q_OBJECT

public:
    /// The application's font, as the desktop set it, is the one of 100 %.
    explicit VellThemeRoot(QApplication &application);
    ~VellThemeRoot() override;

    /// Null outside a graphical program.
    [[nodiscard]] static VellThemeRoot *instance();
    /// The theme that is shown.
    [[nodiscard]] static const VellTheme &theme();
    /// Reads the preferences again and shows what they say; nothing without an instance.
    static void refresh();

Q_SIGNALS:
    /// Another one is about to be shown: what nobody sees had better go, for each widget takes its
    /// time.
    void aboutToChange();
    /// Another theme or zoom is shown.
    void changed();

private:
    void show(const VellTheme &theme, double zoom);

    QApplication &m_application;
    QFont m_font; ///< at 100 %
    VellTheme m_theme;
    double m_zoom = 1;
};
