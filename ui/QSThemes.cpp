#include "QSThemes.h"

#include "VellThemeRoot.h"

using namespace Qt::Literals::StringLiterals;

namespace QSThemes {
QList<VellTheme> extras()
{
    using RGB = VellTheme::RGB;
    return {{graphiteID, u"Professional Graphite"_s, VellTheme::Family::extra, RGB(0x17191D),
             RGB(0x41454D), RGB(0x272A30), RGB(0xF4F6F9), RGB(0xB8BEC8), RGB(0x5D9CF2)}};
}
} // namespace QSThemes

namespace QSColors {
const VellTheme &theme()
{
    return VellThemeRoot::theme();
}
} // namespace QSColors
