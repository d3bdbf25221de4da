#pragma once

#include "QSBackup.h"
#include "QSTemplates.h"
#include "ScratchUser.h"
#include "TestFiles.h"

#include <QProcess>

#include <memory>

/// A backup of two documents, two filled PDFs and two answers.
inline QByteArray sample()
{
    return contents(QStringLiteral(QS_SAMPLES "/sample.qsbackup"));
}

/// The sample with a piece of its text replaced.
inline QByteArray sampleWith(const QByteArray &before, const QByteArray &after)
{
    QByteArray bytes = sample();
    const qsizetype at = bytes.indexOf(before);
    if (at < 0) {
        qFatal("The sample has no %s", before.constData());
    }
    return bytes.replace(at, before.size(), after);
}

inline QString filledPath(const QString &name)
{
    return QSInfo::filledFolder().filePath(name);
}

inline QStringList foldersAmongFilled()
{
    return QSInfo::filledFolder().entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
}

/// The state that a backup stands for.
inline QSBackup::File stateOf(const QByteArray &backup)
{
    QSBackup::File file = QSBackup::read(backup);
    file.created.clear();
    return file;
}

/// What the SQLite shell says of the database.
inline QString shell(const QString &sql)
{
    QProcess sqlite;
    sqlite.start(QStringLiteral("sqlite3"), {ScratchUser::database(), sql});
    sqlite.waitForFinished();
    return QString::fromUtf8(sqlite.readAllStandardOutput()).trimmed();
}

/// A user with a store, and what tests of backups do with it.
class BackupFixture final
{
public:
    [[nodiscard]] QSStore &store() { return *m_store; }
    [[nodiscard]] QString path(const QString &name) const { return m_user.path(name); }

    /// As the program is started anew.
    void openAgain()
    {
        m_store.reset();
        m_store = std::make_unique<QSStore>(QSInfo::databaseURL());
    }
    void close() { m_store.reset(); }

    /// What the store holds, the files of its filled PDFs included.
    QSBackup::File state()
    {
        QSBackup::File state = QSBackup::contents(store());
        state.created.clear();
        for (QSBackup::PDF &pdf : state.filledPDFs) {
            pdf.data = contents(filledPath(pdf.fileName));
        }
        return state;
    }

    /// Saves three documents, three filled PDFs and two answers, which all have the mark in them.
    void fill(const QString &mark)
    {
        store().saveProfile({{QStringLiteral("name"), mark}, {mark, QStringLiteral("ü\"\\\n")}});
        for (qsizetype number = 0; number < 3; ++number) {
            store().save(document(mark + QString::number(number)));
            store().saveFilledPDF(QStringLiteral("us-w-9"), mark,
                                  "%PDF" + mark.toUtf8().repeated(number * 20'000));
        }
    }
    static QSDocument document(const QString &title)
    {
        return {.id = {},
                .templateID = QSTemplates::all().first().id,
                .templateVersion = {},
                .title = title,
                .values = {{QStringLiteral("a"), title}},
                .state = QStringLiteral("CO"),
                .created = {},
                .modified = {}};
    }

    void restore(const QByteArray &bytes) { QSBackup::restore(bytes, store()); }
    /// In steps, as the program does it.
    void restoreFile(const QString &backup)
    {
        QSBackup::restore(QSBackup::stage(QUrl::fromLocalFile(backup), store().url()), store());
    }
    int backUp(const QString &to) { return QSBackup::write(store(), QUrl::fromLocalFile(to)); }

private:
    ScratchUser m_user;
    std::unique_ptr<QSStore> m_store = std::make_unique<QSStore>(QSInfo::databaseURL());
};
