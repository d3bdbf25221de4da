#pragma once

#include "QSPDFDocument.h"

#include <QDir>
#include <QFile>
#include <QProcess>

/// The collection of real forms beside the project, which the benchmarks of PDF forms need.
namespace RealForms {
inline QDir folder()
{
    return QDir(QStringLiteral(QS_REAL_FORMS));
}

inline QByteArray read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("%s can't be read", qPrintable(path));
    }
    return file.readAll();
}

inline QString i912()
{
    return folder().filePath(QStringLiteral("i-912-encrypted-xfa.pdf"));
}

/// Another value for every widget that holds one, locked ones too: a word of its own for a text,
/// the last choice, every check box ticked. Returns how many were set.
inline int fillAll(QSPDFDocument &document)
{
    int count = 0;
    for (const FormField &field : document.fields()) {
        if (field.kind == FormField::Kind::pushButton || field.kind == FormField::Kind::signature) {
            continue;
        }
        ++count;
        FormValue value;
        if (field.kind == FormField::Kind::text) {
            const QString text = QStringLiteral("v%1").arg(field.id);
            value.text = field.maxLength > 0 ? text.left(field.maxLength) : text;
        } else if (!field.choices.isEmpty()) {
            value.chosen = {static_cast<int>(field.choices.size()) - 1};
        } else {
            value.on = true;
        }
        document.setValue(field.id, value);
    }
    return count;
}

/// Runs a program to its end, what it prints unseen. Warnings of qpdf (status 3) are no failure.
inline void run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || (process.exitCode() != 0 && process.exitCode() != 3)) {
        qFatal("%s failed", qPrintable(program));
    }
}
} // namespace RealForms
