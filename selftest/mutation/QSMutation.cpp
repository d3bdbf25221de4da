#include "QSMutation.h"

namespace QSMutation {
const QSet<QString> &active()
{
    static const QSet<QString> names = [] {
        QSet<QString> found;
        const QString value = qEnvironmentVariable(variable);
        for (const QString &name : value.split(u',')) {
            if (!name.trimmed().isEmpty()) {
                found.insert(name.trimmed());
            }
        }
        return found;
    }();
    return names;
}

bool anyArmed = false;

void arm()
{
    anyArmed = !active().isEmpty();
}
} // namespace QSMutation
