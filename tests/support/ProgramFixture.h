#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// The built executable as processes of its own, for a user with nothing but a home.
class ProgramFixture
{
protected:
    struct Ended
    {
        int status = -1; ///< -1 for a crash, too
        QString output;
        QString errors;
    };

    void beginProgram()
    {
        m_home = std::make_unique<QTemporaryDir>();
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        const auto set = [this](const char *name, const QString &path) {
            m_environment.insert(QString::fromLatin1(name), path);
        };
        set("QS_DATA_DIR", m_home->filePath(QStringLiteral("data")));
        set("XDG_CONFIG_HOME", m_home->filePath(QStringLiteral("config")));
        set("XDG_RUNTIME_DIR", m_runtime.path());
    }

    [[nodiscard]] static QString program()
    {
        return QCoreApplication::applicationDirPath() + QStringLiteral("/quillstone");
    }

    /// A copy of the executable away from its resources.
    [[nodiscard]] QString lonelyProgram() const
    {
        const QString path = m_home->filePath(QStringLiteral("quillstone"));
        return QFile::copy(program(), path) ? path : QString();
    }

    /// A folder in the user's home, made when it is missing.
    [[nodiscard]] QString folder(const QString &name) const
    {
        QDir(m_home->path()).mkpath(name);
        return m_home->filePath(name);
    }

    void start(QProcess &process, const QStringList &arguments = {},
               const QString &path = program()) const
    {
        process.setProcessEnvironment(m_environment);
        process.start(path, arguments);
        QVERIFY(process.waitForStarted(20'000));
    }

    [[nodiscard]] Ended run(const QStringList &arguments, const QString &path = program()) const
    {
        constexpr int timeLimit = 240'000;
        QProcess process;
        start(process, arguments, path);
        if (!process.waitForFinished(timeLimit) || process.exitStatus() != QProcess::NormalExit) {
            return {};
        }
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    std::unique_ptr<QTemporaryDir> m_home;
    QTemporaryDir m_runtime; ///< for the desktop's libraries, which keep sockets and such there
    QProcessEnvironment m_environment;
};
