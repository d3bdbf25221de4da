#pragma once

#include "QSFlatODF.h"
#include "Samples.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QUrl>

/// A document converted by LibreOffice as a person does it on the command line.
class LibreOffice final
{
public:
    LibreOffice(const SampleUser &user, const QSRendered &rendered)
        : m_folder(user.path(QStringLiteral("by-hand"))),
          m_profile(user.path(QStringLiteral("by-hand-profile")))
    {
        QDir().mkpath(m_folder);
        QFile file(m_folder + QStringLiteral("/document.fodt"));
        if (!file.open(QIODevice::WriteOnly) || file.write(QSFlatODF::write(rendered)) < 0) {
            qFatal("%s can't be written", qPrintable(file.fileName()));
        }
    }

    void convert(const QString &format) const
    {
        const QString output = m_folder + QStringLiteral("/document.") + format;
        QFile::remove(output);
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.start(QStringLiteral("soffice"),
                      {QStringLiteral("--headless"),
                       QStringLiteral("-env:UserInstallation=") +
                           QUrl::fromLocalFile(m_profile).toString(QUrl::FullyEncoded),
                       QStringLiteral("--convert-to"), format, QStringLiteral("--outdir"), m_folder,
                       m_folder + QStringLiteral("/document.fodt")});
        if (!process.waitForFinished(-1) || process.exitCode() != 0 || !QFile::exists(output)) {
            qFatal("soffice made no %s", qPrintable(format));
        }
    }

private:
    QString m_folder;
    QString m_profile;
};
