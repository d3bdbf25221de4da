#pragma once

#include <QMap>
#include <QString>

#include <array>

/// The answers about themselves that a user saves once, to fill templates with.
namespace QSProfile {
struct Field
{
    QStringView key;
    QStringView label;
};

/// In the order of the profile screen.
extern const std::array<Field, 8> fields;

/// The profile's text for a key, empty when there is none. The key "address" gives street, city,
/// state and ZIP code in one line; parts that are empty leave no separator behind.
[[nodiscard]] QString value(QStringView key, const QMap<QString, QString> &profile);
} // namespace QSProfile
