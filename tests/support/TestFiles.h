#pragma once

#include "QSError.h"

#include <QDirIterator>
#include <QFile>
#include <QMap>
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
