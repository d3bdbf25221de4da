#include "QSCache.h"

#include "QSDate.h"
#include "QSDirectory.h"
#include "QSError.h"
#include "QSFile.h"
#include "QSInfo.h"
#include "QSMutation.h"
#include "QSNet.h"
#include "QSPDFDocument.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <mutex>

using namespace Qt::Literals::StringLiterals;

namespace {
std::mutex folderMutex; // held from a copy to its record, so that nobody sees or makes half a pair

const QString noNewerVersion =
    QStringLiteral("Checked with the official site just now: no newer version.");

/// A file of the one folder, whatever the id says.
QString path(const QString &id, const QString &suffix)
{
    return QSInfo::cacheFolder().filePath(QFileInfo(id).fileName() + suffix);
}

void write(const QString &path, const QByteArray &data)
{
    try {
        QSFile::write(path, data, QSFile::Readers::owner);
    } catch (const QSError &error) {
        throw QSError::io(u"The form could not be saved: "_s + error.payload());
    }
}

/// Moves a copy that somebody changed out of the way of the next one. Returns where it is now.
QString keptAside(const QString &file)
{
    const QDir folder = QSInfo::cacheFolder();
    const QFileInfo changed(file);
    const auto place = [&](int number) {
        return folder.filePath(u"Changed Here/%1 %2.%3"_s.arg(changed.completeBaseName())
                                   .arg(number)
                                   .arg(changed.suffix()));
    };
    folder.mkpath(u"Changed Here"_s);
    int number = 1;
    while (QFile::exists(place(number))) {
        ++number;
    }
    QFile copy(file);
    if (!copy.rename(place(number))) {
        throw QSError::io(u"The form could not be saved: "_s + copy.errorString());
    }
    return place(number);
}

double seconds(const QDateTime &time)
{
    return static_cast<double>(time.toMSecsSinceEpoch()) / 1000;
}

/// The limit, some 300,000 years away, keeps a damaged record's number within what a date can hold.
QDateTime pointInTime(const QJsonValue &value)
{
    constexpr double limit = 1e13;
    const double seconds = std::clamp(value.toDouble(), -limit, limit);
    return QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000), Qt::UTC);
}

std::optional<QString> optionalText(const QJsonValue &value)
{
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

QByteArray encoded(const QSCacheMeta &meta)
{
    QJsonObject object{{u"entryID"_s, meta.entryID},
                       {u"url"_s, meta.url},
                       {u"finalURL"_s, meta.finalURL},
                       {u"downloadedAt"_s, seconds(meta.downloadedAt)},
                       {u"lastCheckedAt"_s, seconds(meta.lastCheckedAt)},
                       {u"sha256"_s, meta.sha256},
                       {u"bytes"_s, meta.bytes},
                       {u"contentType"_s, meta.contentType},
                       {u"updatedOnLastCheck"_s, meta.updatedOnLastCheck}};
    if (meta.etag) {
        object.insert(u"etag"_s, *meta.etag);
    }
    if (meta.lastModified) {
        object.insert(u"lastModified"_s, *meta.lastModified);
    }
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

/// Absent when a value is missing or of another type.
std::optional<QSCacheMeta> decoded(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto all = [&object](QJsonValue::Type type, const QStringList &keys) {
        return std::ranges::all_of(
            keys, [&](const QString &key) { return object.value(key).type() == type; });
    };
    if (!all(QJsonValue::String,
             {u"entryID"_s, u"url"_s, u"finalURL"_s, u"sha256"_s, u"contentType"_s}) ||
        !all(QJsonValue::Double, {u"downloadedAt"_s, u"lastCheckedAt"_s, u"bytes"_s}) ||
        !all(QJsonValue::Bool, {u"updatedOnLastCheck"_s})) {
        return std::nullopt;
    }
    return QSCacheMeta{.entryID = object.value(u"entryID"_s).toString(),
                       .url = object.value(u"url"_s).toString(),
                       .finalURL = object.value(u"finalURL"_s).toString(),
                       .downloadedAt = pointInTime(object.value(u"downloadedAt"_s)),
                       .lastCheckedAt = pointInTime(object.value(u"lastCheckedAt"_s)),
                       .etag = optionalText(object.value(u"etag"_s)),
                       .lastModified = optionalText(object.value(u"lastModified"_s)),
                       .sha256 = object.value(u"sha256"_s).toString(),
                       .bytes = object.value(u"bytes"_s).toInteger(),
                       .contentType = object.value(u"contentType"_s).toString(),
                       .updatedOnLastCheck = object.value(u"updatedOnLastCheck"_s).toBool()};
}

/// The copy that is there before the site is asked.
struct Copy
{
    QSCacheMeta meta;
    QString sha256; ///< of its bytes as they are
    /// The record speaks of these bytes and of this link. It does not when the program was killed
    /// between the two, or when the directory has a new link for the form: the site then can't be
    /// asked for what changed since.
    bool isRecorded = false;
};

std::optional<Copy> savedCopy(const QSEntry &entry)
{
    const std::scoped_lock lock(folderMutex);
    const std::optional<QSCacheMeta> meta = QSCache::meta(entry.id);
    QFile file(QSCache::fileURL(entry));
    if (!meta || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    const QString sha256 = QSCache::sha(bytes);
    if (sha256 != meta->sha256 && !QSCache::valid(bytes, entry)) {
        return std::nullopt;
    }
    return Copy{*meta, sha256, sha256 == meta->sha256 && entry.url == meta->url};
}

/// One form on its way from the site.
class Opening final
{
public:
    Opening(const QSEntry &entry, const QDateTime &now)
        : m_entry(entry), m_now(now), m_copy(savedCopy(entry))
    {
    }

    /// True when the site can be asked whether this copy is still its own.
    [[nodiscard]] bool canBeConfirmed() const { return m_copy && m_copy->isRecorded; }

    [[nodiscard]] bool canSkipCheck() const
    {
        return canBeConfirmed() && !QSCache::needsRecheck(m_copy->meta, m_now);
    }

    [[nodiscard]] QSCache::Result withoutCheck() const
    {
        return withCopy(QSCache::Outcome::unchanged,
                        u"Saved copy downloaded %1."_s.arg(downloadDate()));
    }

    [[nodiscard]] QSNet::Request request(QSCache::Asker asker) const
    {
        QSNet::Request request{.url = m_entry.url, .isAutomatic = asker == QSCache::Asker::program};
        if (canBeConfirmed()) {
            if (m_copy->meta.etag) {
                request.headers.append({"If-None-Match", m_copy->meta.etag->toUtf8()});
            }
            if (m_copy->meta.lastModified) {
                request.headers.append({"If-Modified-Since", m_copy->meta.lastModified->toUtf8()});
            }
        }
        return request;
    }

    [[nodiscard]] QSCache::Result unreachable(const QString &reason) const
    {
        if (!m_copy) {
            throw QSError::network(
                u"Could not download the form from the official site: %1. An internet connection "
                "is needed the first time a form is opened."_s.arg(reason));
        }
        return withCopy(
            QSCache::Outcome::offlineCopy,
            u"Could not reach the official site (%1). Showing the copy downloaded %2."_s.arg(
                reason, downloadDate()));
    }

    [[nodiscard]] QSCache::Result badLink(const QString &reason) const
    {
        if (!m_copy) {
            throw QSError::network(
                u"The form could not be downloaded: %1. The official link may have moved; the "
                "\"Official page\" button opens the agency's forms page."_s.arg(reason));
        }
        return withCopy(QSCache::Outcome::offlineCopy,
                        u"The official link has a problem (%1); it may have moved. Showing the "
                        "copy downloaded %2. The Forms Last Checked screen lists links that need "
                        "attention."_s.arg(reason, downloadDate()));
    }

    /// Absent when the copy was deleted while the site was asked.
    [[nodiscard]] std::optional<QSCache::Result> confirmed()
    {
        const std::scoped_lock lock(folderMutex);
        const std::optional<QSCacheMeta> current = QSCache::meta(m_entry.id);
        if (!current) {
            return std::nullopt;
        }
        m_copy->meta = *current;
        m_copy->meta.lastCheckedAt = m_now;
        m_copy->meta.updatedOnLastCheck = false;
        record(m_copy->meta);
        return withCopy(QSCache::Outcome::unchanged, noNewerVersion);
    }

    [[nodiscard]] QSCache::Result downloaded(const QByteArray &body,
                                             const QSNet::Response &response) const
    {
        const QString sha256 = QSCache::sha(body);
        const bool isNewer = m_copy && m_copy->sha256 != sha256;
        const QSCacheMeta meta{.entryID = m_entry.id,
                               .url = m_entry.url,
                               .finalURL =
                                   response.finalURL.isEmpty() ? m_entry.url : response.finalURL,
                               .downloadedAt = m_now,
                               .lastCheckedAt = m_now,
                               .etag = response.header("etag"),
                               .lastModified = response.header("last-modified"),
                               .sha256 = sha256,
                               .bytes = body.size(),
                               .contentType = response.header("content-type").value_or(QString()),
                               .updatedOnLastCheck = isNewer};
        const QString file = QSCache::fileURL(m_entry);
        QString aside;
        {
            const std::scoped_lock lock(folderMutex);
            if (isNewer && m_copy->sha256 != m_copy->meta.sha256) {
                aside =
                    u" The copy that was changed on this computer is kept as "_s + keptAside(file);
            }
            write(file, body);
            record(meta);
        }
        if (!m_copy) {
            return {file, meta, QSCache::Outcome::downloaded,
                    u"Downloaded from the official site just now."_s};
        }
        if (isNewer) {
            return {file, meta, QSCache::Outcome::updated,
                    u"The official site has a newer version of this form. The new version was "
                    "downloaded and replaces the old copy."_s +
                        aside};
        }
        return {file, meta, QSCache::Outcome::unchanged, noNewerVersion};
    }

private:
    [[nodiscard]] QSCache::Result withCopy(QSCache::Outcome outcome, const QString &message) const
    {
        return {QSCache::fileURL(m_entry), m_copy->meta, outcome, message};
    }

    [[nodiscard]] QString downloadDate() const { return QSDate::stamp(m_copy->meta.downloadedAt); }

    /// The form is there to be shown whether or not its record could be written: without it the
    /// site is only asked again the next time.
    static void record(const QSCacheMeta &meta)
    {
        try {
            QSCache::saveMeta(meta);
        } catch (const QSError &error) {
            qWarning("%s", error.what());
        }
    }

    const QSEntry &m_entry;
    const QDateTime &m_now;
    std::optional<Copy> m_copy;
};

/// Whether a valid file has its own end. Readers repair what was cut off, and its last pages are
/// gone for good.
bool hasEnd(const QByteArray &data, const QSEntry &entry)
{
    constexpr qsizetype longestZipEnd = 22 + 65'535; // the record and its comment
    switch (entry.kind) {
    case QSKind::pdf:
        return QSPDFDocument::isSound(data);
    case QSKind::document:
        return data.last(std::min(data.size(), longestZipEnd)).contains("PK\5\6");
    default:
        return true;
    }
}

bool opensInBrowser(const QSEntry &entry)
{
    return !QSKinds::info(entry.kind).downloads || entry.browserOnly ||
           !QSDirectory::wellFormed(entry.url);
}
} // namespace

namespace QSCache {
QString fileURL(const QSEntry &entry)
{
    return path(entry.id, entry.kind == QSKind::document ? u".docx"_s : u".pdf"_s);
}

QString metaURL(const QString &entryID)
{
    return path(entryID, u".json"_s);
}

std::optional<QSCacheMeta> meta(const QString &entryID)
{
    QFile file(metaURL(entryID));
    return file.open(QIODevice::ReadOnly) ? decoded(file.readAll()) : std::nullopt;
}

void saveMeta(const QSCacheMeta &meta)
{
    write(metaURL(meta.entryID), encoded(meta));
}

bool hasCopy(const QSEntry &entry)
{
    return QFileInfo(fileURL(entry)).isFile() && meta(entry.id);
}

bool needsRecheck(const QSCacheMeta &meta, const QDateTime &now)
{
    return QSDate::days(meta.lastCheckedAt, now) >= QSInfo::recheckAfterDays &&
           !QSMutation::on(u"never-recheck");
}

QString sha(const QByteArray &data)
{
    return QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex());
}

bool valid(const QByteArray &data, const QSEntry &entry)
{
    switch (entry.kind) {
    case QSKind::pdf:
        return (data.startsWith("%PDF") && QSPDFDocument::isPDF(data)) ||
               QSMutation::on(u"error-page-as-form");
    case QSKind::document:
        return data.startsWith("PK");
    default:
        return !data.isEmpty();
    }
}

Result obtain(const QSEntry &entry, bool forceCheck, const QDateTime &now,
              const std::stop_token &stop, Asker asker)
{
    if (opensInBrowser(entry)) {
        throw QSError::network(u"This official link opens in your web browser."_s);
    }
    Opening opening(entry, now);
    if (!forceCheck && opening.canSkipCheck()) {
        return opening.withoutCheck();
    }
    const QSNet::Answer answer = QSNet::fetch(opening.request(asker), stop);
    if (stop.stop_requested()) {
        throw QSError::network(u"The download was stopped."_s);
    }
    if (!answer.response) {
        return opening.unreachable(answer.error.value_or(u"no connection"_s));
    }
    const int status = answer.response->status;
    if (status == 304 && opening.canBeConfirmed()) {
        const std::optional<Result> confirmed = opening.confirmed();
        return confirmed ? *confirmed : obtain(entry, false, now, stop, asker);
    }
    if (status < 200 || status > 299) {
        return opening.badLink(u"the official site answered %1"_s.arg(status));
    }
    if (!answer.body || !valid(*answer.body, entry)) {
        const QString promised = entry.kind == QSKind::pdf ? u"PDF"_s : u"file"_s;
        return opening.badLink(u"the official site did not send a valid "_s + promised);
    }
    if (!answer.response->endIsTold && !hasEnd(*answer.body, entry)) {
        return opening.unreachable(u"the connection broke off before the end"_s);
    }
    return opening.downloaded(*answer.body, *answer.response);
}

qint64 cacheSize()
{
    qint64 size = 0;
    const QFileInfoList files = QSInfo::cacheFolder().entryInfoList(QDir::Files | QDir::Hidden);
    for (const QFileInfo &file : files) {
        size += file.size();
    }
    return size;
}

int copyCount()
{
    return static_cast<int>(
        QSInfo::cacheFolder().entryList({u"*.pdf"_s, u"*.docx"_s}, QDir::Files).size());
}

int clear()
{
    const std::scoped_lock lock(folderMutex);
    const int before = copyCount();
    const QDir folder = QSInfo::cacheFolder();
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        QFile::remove(folder.filePath(name));
    }
    return before - copyCount();
}
} // namespace QSCache
