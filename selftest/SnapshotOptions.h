#pragma once

#include <QString>
#include <QStringList>

/// What the arguments of the snapshot mode ask for.
struct SnapshotOptions
{
    QString folder;
    QString theme; ///< id
    double zoom = 1;
    QString state = QStringLiteral("CO"); ///< code

    /// Reads the arguments after "--qs-snapshot". Throws QSError::invalid with a sentence on what
    /// is missing or makes no sense.
    [[nodiscard]] static SnapshotOptions parse(const QStringList &arguments);
};
