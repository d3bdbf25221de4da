#include "QSClock.h"

namespace {
std::optional<QDateTime> fixed;
}

namespace QSClock {
QDateTime now()
{
    return fixed ? *fixed : QDateTime::currentDateTimeUtc();
}

QDate today()
{
    return now().toLocalTime().date();
}

void setFixed(const std::optional<QDateTime> &moment)
{
    fixed = moment ? std::optional(moment->toUTC()) : std::nullopt;
}
} // namespace QSClock
