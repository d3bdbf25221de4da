#include "QSProfile.h"

#include "QSMutation.h"

#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace QSProfile {
const std::array<Field, 8> fields = {{
    {u"fullName", u"Full legal name"},
    {u"street", u"Street address"},
    {u"city", u"City"},
    {u"state", u"State (2 letters)"},
    {u"zip", u"ZIP code"},
    {u"county", u"County"},
    {u"phone", u"Phone"},
    {u"email", u"Email"},
}};

static QString joined(QStringList parts, const QString &separator)
{
    parts.removeAll(QString());
    return parts.join(separator);
}

static QString address(const QMap<QString, QString> &profile)
{
    const auto part = [&profile](const QString &key) { return profile.value(key).trimmed(); };
    const QString region = joined({part(u"state"_s), part(u"zip"_s)}, u" "_s);
    if (QSMutation::on(u"autofill-forgets-city")) {
        return joined({part(u"street"_s), region}, u", "_s);
    }
    return joined({part(u"street"_s), part(u"city"_s), region}, u", "_s);
}

QString value(QStringView key, const QMap<QString, QString> &profile)
{
    return key == u"address" ? address(profile) : profile.value(key.toString());
}
} // namespace QSProfile
