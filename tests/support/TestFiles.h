#pragma once

#include "QSError.h"

#include <QFile>
#include <QString>

inline QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("%s could not be written", qPrintable(path));
    }
}

/// The sentence of the error that the action throws; null when it throws none.
template <typename Action>
QString sentence(Action action)
{
    try {
        action();
    } catch (const QSError &error) {
        return error.description();
    }
    return {};
}
