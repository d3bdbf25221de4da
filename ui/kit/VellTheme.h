#pragma once

#include <QColor>
#include <QList>
#include <QString>

/// The colours of one look of the program. A value.
struct VellTheme
{
    /// A colour in sRGB, each channel from 0 to 1.
    struct RGB
    {
        double r = 0;
        double g = 0;
        double b = 0;

        constexpr RGB() = default;
        /// From 0xRRGGBB.
        constexpr explicit RGB(unsigned hex)
            : r(((hex >> 16) & 0xFF) / 255.0),
              g(((hex >> 8) & 0xFF) / 255.0),
              b((hex & 0xFF) / 255.0)
        {
        }
        bool operator==(const RGB &) const = default;

        /// Relative luminance as WCAG 2 defines it, 0 to 1.
        [[nodiscard]] double luminance() const;
        [[nodiscard]] QColor color(double opacity = 1) const;
    };
    enum class Family { masculine, feminine, black, gray, extra };

    QString id;
    QString name;
    Family family = Family::extra;
    RGB bg;          ///< window background
    RGB panelTop;    ///< a panel's gradient runs from here
    RGB panelBottom; ///< to here
    RGB text;        ///< body text
    RGB dim;         ///< secondary text
    RGB accent;      ///< buttons, selection, links

    bool operator==(const VellTheme &) const = default;

    /// Contrast ratio of two colours as WCAG 2 defines it, 1 to 21.
    [[nodiscard]] static double contrast(RGB a, RGB b);
    /// Of the theme's text and background, black and white, what reads best on a colour.
    [[nodiscard]] RGB readableOn(RGB colour) const;
};

/// The themes that can be chosen. Main thread only.
namespace VellThemes {
[[nodiscard]] const QList<VellTheme> &builtIn();
/// The built-in themes, then the registered ones.
[[nodiscard]] QList<VellTheme> all();
/// Appends an application's own themes; a theme whose id is registered already replaces it.
void registerThemes(const QList<VellTheme> &themes);
[[nodiscard]] QString defaultID();
void setDefaultID(const QString &id);
/// The id in the preferences, or the default's.
[[nodiscard]] QString currentID();
/// Stores the choice and shows it in every window.
void setCurrentID(const QString &id);
/// The theme of that id, else the default one, else the first.
[[nodiscard]] VellTheme named(const QString &id);
[[nodiscard]] VellTheme current();
} // namespace VellThemes
