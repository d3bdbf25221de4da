#include "VellTheme.h"

#include "QSMutation.h"
#include "QSPrefs.h"
#include "VellThemeRoot.h"

#include <QSettings>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {
QList<VellTheme> registered;
QString chosenDefault;
const QString key = u"vell.theme"_s;

double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}
} // namespace

double VellTheme::RGB::luminance() const
{
    return 0.2126 * linear(r) + 0.7152 * linear(g) + 0.0722 * linear(b);
}

QColor VellTheme::RGB::color(double opacity) const
{
    return QColor::fromRgbF(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b),
                            static_cast<float>(opacity));
}

double VellTheme::contrast(RGB a, RGB b)
{
    const auto [darker, lighter] = std::minmax({a.luminance(), b.luminance()});
    return (lighter + 0.05) / (darker + 0.05);
}

VellTheme::RGB VellTheme::readableOn(RGB colour) const
{
    return std::max({text, bg, RGB(0x000000), RGB(0xFFFFFF)},
                    [colour](RGB a, RGB b) { return contrast(a, colour) < contrast(b, colour); });
}

namespace VellThemes {
const QList<VellTheme> &builtIn()
{
    using RGB = VellTheme::RGB;
    using enum VellTheme::Family;
    static const QList<VellTheme> themes = {
        {u"cobalt-gunmetal"_s, u"Cobalt Gunmetal"_s, masculine, RGB(0x14181F), RGB(0x353C48),
         RGB(0x1C2129), RGB(0xF2F5FA), RGB(0xA3AEC0), RGB(0x2F7BF2)},
        {u"candy-red-titanium"_s, u"Candy Red Titanium"_s, masculine, RGB(0x1A1616), RGB(0x403736),
         RGB(0x231D1D), RGB(0xFAF3F2), RGB(0xC2AAA7), RGB(0xD3262E)},
        {u"rose-gold"_s, u"Rose Gold"_s, feminine, RGB(0x24161D), RGB(0x4A3039), RGB(0x2C1B23),
         RGB(0xFFF2F5), RGB(0xD6AFBC), RGB(0xE0789A)},
        {u"lavender-pearl"_s, u"Lavender Pearl"_s, feminine, RGB(0x1C1726), RGB(0x40375A),
         RGB(0x241D33), RGB(0xF6F2FF), RGB(0xBDB1DA), RGB(0x9B7BE8)},
        {u"midnight-black"_s, u"Midnight Black"_s, black, RGB(0x050506), RGB(0x26272B),
         RGB(0x0E0E10), RGB(0xFFFFFF), RGB(0x9C9EA6), RGB(0x5AA9FF)},
        {u"brushed-gray"_s, u"Brushed Gray"_s, gray, RGB(0x3A3D42), RGB(0x6A6E75), RGB(0x45484E),
         RGB(0xFFFFFF), RGB(0xD9DCE1), RGB(0x1F6FD1)},
    };
    return themes;
}

QList<VellTheme> all()
{
    return builtIn() + registered;
}

void registerThemes(const QList<VellTheme> &themes)
{
    for (const VellTheme &theme : themes) {
        const auto known = std::ranges::find(registered, theme.id, &VellTheme::id);
        if (known == registered.end()) {
            registered.append(theme);
        } else {
            *known = theme;
        }
    }
}

QString defaultID()
{
    return chosenDefault;
}

void setDefaultID(const QString &id)
{
    chosenDefault = id;
}

QString currentID()
{
    return QSPrefs::settings()->value(key, defaultID()).toString();
}

void setCurrentID(const QString &id)
{
    QSPrefs::settings()->setValue(key, id);
    VellThemeRoot::refresh();
}

VellTheme named(const QString &id)
{
    const QList<VellTheme> themes = all();
    const QString instead = QSMutation::on(u"forgotten-default") ? QString() : defaultID();
    for (const QString &wanted : {id, instead}) {
        const auto match = std::ranges::find(themes, wanted, &VellTheme::id);
        if (match != themes.end()) {
            return *match;
        }
    }
    return themes.first();
}

VellTheme current()
{
    return named(currentID());
}
} // namespace VellThemes
