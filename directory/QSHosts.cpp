#include "QSHosts.h"

#include "QSMutation.h"

#include <QUrl>

#include <algorithm>

namespace QSHosts {
bool isBotProtected(const QString &url)
{
    const QString host = QUrl(url).host(); // QUrl gives hosts in lower case
    return std::ranges::find(botProtected, host) != botProtected.end();
}

bool isHandChecked(const QString &url)
{
    const QString host = QUrl(url).host();
    return std::ranges::find(handChecked, host) != handChecked.end() ||
           host.endsWith(QStringLiteral(".%1").arg(
               QSMutation::on(u"whole-state-by-hand") ? u"ca.gov" : courtDomain));
}
} // namespace QSHosts
