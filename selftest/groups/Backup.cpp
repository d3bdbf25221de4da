#include "Groups.h"
#include "QSBackup.h"
#include "QSError.h"
#include "QSInfo.h"
#include "QSTestRun.h"
#include "Sample.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {
/// A second user's data folder with an empty database in it, until this object goes.
class OtherUser final
{
public:
    OtherUser() : m_former(QSInfo::dataFolder().path())
    {
        QSInfo::setDataFolderOverride(m_former + u"/restored"_s);
        m_store = std::make_unique<QSStore>(QSInfo::databaseURL());
    }
    ~OtherUser() { QSInfo::setDataFolderOverride(m_former); }
    OtherUser(const OtherUser &) = delete;
    OtherUser &operator=(const OtherUser &) = delete;

    [[nodiscard]] QSStore &store() { return *m_store; }

private:
    QString m_former;
    std::unique_ptr<QSStore> m_store;
};

/// A backup in which something was changed, and what is said of it.
struct Spoilt
{
    QString what;
    QByteArray bytes;
    QString reason;
};

QByteArray with(QJsonObject backup, const QString &key, const QJsonValue &value)
{
    backup.insert(key, value);
    return QJsonDocument(backup).toJson();
}

QByteArray withInPDF(QJsonObject backup, const QString &key, const QString &value)
{
    const QString list = u"filledPDFs"_s;
    QJsonObject pdf = backup.value(list).toArray().at(0).toObject();
    pdf.insert(key, value);
    return with(std::move(backup), list, QJsonArray{pdf});
}

QList<Spoilt> spoilt(const QByteArray &bytes)
{
    QJsonObject good = QJsonDocument::fromJson(bytes).object();
    // what a refused backup would change, if it did
    good.insert(u"profile"_s, QJsonObject{{u"fullName"_s, u"Somebody Else"_s}});
    const QString foreign = u"it is not a Vell Quillstone backup file."_s;
    const QString damaged = u"the filled PDF \"Practice form (filled)\" inside it is damaged."_s;
    const QString noPDF = QString::fromLatin1(QByteArray("<html>moved</html>").toBase64());
    return {
        {u"a file that is not a backup"_s, "Dear diary", foreign},
        {u"a backup from another app"_s, with(good, u"format"_s, u"Another app's backup"_s),
         foreign},
        {u"a backup from a newer version"_s, with(good, u"version"_s, 2),
         u"it was made by a newer version of the app."_s},
        {u"a backup with a damaged PDF inside"_s, withInPDF(good, u"data"_s, noPDF), damaged},
        {u"a backup whose PDF would land elsewhere"_s,
         withInPDF(good, u"fileName"_s, u"../elsewhere.pdf"_s),
         u"a file name inside it is not allowed."_s},
    };
}

void checkRefusal(const Spoilt &backup, QSStore &store, QSTestRun &run)
{
    run.attempt(backup.what + u" is refused and changes nothing"_s, [&] {
        const QString before = Sample::digest(store);
        try {
            QSBackup::restore(backup.bytes, store);
        } catch (const QSError &error) {
            return error == QSError::badBackup(backup.reason) && Sample::digest(store) == before;
        }
        return false;
    });
}

void checkRestore(const QUrl &backup, const QString &digest, OtherUser &other, QSTestRun &run)
{
    QSStore &store = other.store();
    run.attempt(u"the backup is restored into an empty profile"_s, [&] {
        QSBackup::restore(QSBackup::stage(backup, store.url()), store);
        return true;
    });
    run.attempt(u"the profile is the same"_s, [&] { return store.profile() == Sample::profile; });
    run.attempt(u"the document is the same, and the search finds it"_s, [&] {
        const QList<QSDocument> documents = store.documents();
        return documents.size() == 1 && documents.first().values == Sample::sale().values &&
               store.search(u"casimir"_s).size() == 1;
    });
    run.attempt(u"the filled PDF is the same, to the last byte"_s,
                [&] { return store.filledPDFs().size() == 1 && Sample::digest(store) == digest; });
}
} // namespace

void Groups::backup(QSTestRun &run)
{
    QSTestRun::begin(u"Backup and restore (the same comes back; what is no sound backup is refused "
                     "and changes nothing)"_s);
    const QDir folder = QSInfo::dataFolder();
    const QUrl file = QUrl::fromLocalFile(folder.filePath(QSBackup::suggestedName()));
    QSStore store(QUrl::fromLocalFile(folder.filePath(u"backup.sqlite"_s)));
    Sample::save(store);
    run.attempt(u"a backup is written, with nothing left out"_s,
                [&] { return QSBackup::write(store, file) == 0; });
    const QString digest = Sample::digest(store);
    const QByteArray bytes = QSBackup::make(store);
    OtherUser other;
    checkRestore(file, digest, other, run);
    const QList<Spoilt> files = spoilt(bytes);
    for (const Spoilt &each : files) {
        checkRefusal(each, other.store(), run);
    }
}
