#include "EntryLook.h"

#include "QSEntry.h"
#include "QSThemes.h"
#include "VxIcon.h"

#include <QUrl>

using namespace Qt::Literals::StringLiterals;

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

QString about(const QSEntry &entry)
{
    return entry.agency + u" \u00B7 "_s + kind(entry);
}

QString kindSymbol(const QSEntry &entry)
{
    return QSKinds::info(entry.kind).symbol.toString();
}

QIcon kindIcon(const QSEntry &entry)
{
    return VxIcon::named(kindSymbol(entry));
}

QColor statusColour(int level)
{
    return level == 0 ? QSColors::good : (level == 1 ? QSColors::warn : QSColors::bad);
}

QIcon statusIcon(const QSStatus::S &status)
{
    return VxIcon::named(status.symbol, statusColour(status.level));
}

QString siteOf(const QString &url)
{
    const QString host = QUrl(url).host();
    return host.startsWith("www."_L1) ? host.mid(4) : host;
}
} // namespace EntryLook
