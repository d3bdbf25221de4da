#include "QSPrefs.h"

#include <QSettings>

using namespace Qt::Literals::StringLiterals;

namespace {
QString fileOverride;
}

namespace QSPrefs {
void setFileOverride(const QString &path)
{
    fileOverride = path;
}

std::unique_ptr<QSettings> settings()
{
    if (!fileOverride.isEmpty()) {
        return std::make_unique<QSettings>(fileOverride, QSettings::IniFormat);
    }
    return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, u"Vell"_s,
                                       u"Quillstone"_s);
}

bool disclaimerAccepted()
{
    // toBool() would take any word but "false" for a yes
    return settings()->value(disclaimerKey).toString() == "true"_L1;
}

void setDisclaimerAccepted(bool accepted)
{
    settings()->setValue(disclaimerKey, accepted);
}

QString homeState()
{
    return settings()->value(stateKey, u"CO"_s).toString();
}

void setHomeState(const QString &code)
{
    settings()->setValue(stateKey, code);
}
} // namespace QSPrefs
