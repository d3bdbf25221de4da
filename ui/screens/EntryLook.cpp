#include "EntryLook.h"

#include "QSEntry.h"
#include "VellTheme.h"
#include "VxIcon.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
// light enough for every theme's panels
constexpr std::array<QRgb, 3> levelColours = {0, 0xFFFFD166, 0xFFFFA8A0};
} // namespace

namespace EntryLook {
QString mainAction(const QSEntry &entry)
{
    if (entry.opensInBrowser()) {
        return u"Open in browser"_s;
    }
    return entry.kind == QSKind::pdf && entry.fillable ? u"Open, fill & print"_s
                                                       : u"Open & print"_s;
}

QString kind(const QSEntry &entry)
{
    const QString label = QSKinds::info(entry.kind).label.toString();
    return entry.kind == QSKind::pdf && !entry.fillable
               ? label + u" \u00B7 print and fill by hand"_s
               : label;
}

QIcon kindIcon(const QSEntry &entry)
{
    return VxIcon::named(QSKinds::info(entry.kind).symbol.toString());
}

QIcon statusIcon(const QSStatus::S &status)
{
    const auto level = static_cast<std::size_t>(qBound(0, status.level, 2));
    return VxIcon::named(status.symbol, level == 0 ? VellThemes::current().dim.color()
                                                   : QColor::fromRgb(levelColours.at(level)));
}

QString buttonText(const QString &text)
{
    return QString(text).replace(u'&', u"&&"_s);
}
} // namespace EntryLook
