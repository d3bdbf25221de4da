#pragma once

#include "QSError.h"

#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QString>

#include <optional>

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

/// Every file and folder below by its path from there, hidden ones too, with its bytes.
inline QMap<QString, QByteArray> tree(const QString &folder)
{
    QMap<QString, QByteArray> files;
    QDirIterator all(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        const QString path = all.next();
        files.insert(QDir(folder).relativeFilePath(path), contents(path));
    }
    return files;
}

/// The error that the action throws; absent when it throws none.
template <typename Action>
std::optional<QSError> errorOf(Action action)
{
    try {
        action();
    } catch (const QSError &error) {
        return error;
    }
    return std::nullopt;
}

/// Its sentence; null when there is none.
template <typename Action>
QString sentence(Action action)
{
    const std::optional<QSError> error = errorOf(action);
    return error ? error->description() : QString();
}

/// True when the action fails at the disk or a file on it.
template <typename Action>
bool failsAtTheDisk(Action action)
{
    const std::optional<QSError> error = errorOf(action);
    return error && error->errorCase() == QSError::Case::io;
}
