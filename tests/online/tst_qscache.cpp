#include "../pdf/SmallPDF.h"
#include "AgencyServer.h"
#include "QSCache.h"
#include "QSNet.h"
#include "QpdfFile.h"
#include "ScratchUser.h"
#include "SmallDisk.h"
#include "TestFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <array>
#include <functional>
#include <future>
#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Answer = AgencyServer::Answer;
using Outcome = QSCache::Outcome;

namespace {
const QString address = QStringLiteral("https://forms.example/answer.pdf");
const QDateTime now({2027, 3, 10}, {12, 0});
const QByteArray etag = "\"v1\"";
const QByteArray modified = "Fri, 01 Jan 2027 00:00:00 GMT";
const QString noNewer =
    QStringLiteral("Checked with the official site just now: no newer version.");
const QString newer =
    QStringLiteral("The official site has a newer version of this form. The new version was "
                   "downloaded and replaces the old copy.");

/// A PDF of one empty page, different for each text.
QByteArray pdf(const QByteArray &text)
{
    return smallPDF({}) + '%' + text + '\n';
}
const QByteArray oldForm = pdf("old");
const QByteArray newForm = pdf("new");

QSEntry formEntry(QSKind kind = QSKind::pdf, const QString &url = address)
{
    QSEntry entry;
    entry.id = u"co-answer"_s;
    entry.kind = kind;
    entry.url = url;
    return entry;
}

Answer form(const QByteArray &body, bool honoursConditions = true)
{
    Answer answer = Answer::pdf(body, etag);
    answer.headers.append({"Last-Modified", modified});
    answer.honoursConditions = honoursConditions;
    return answer;
}

/// What came of an opening: a result, or the sentence of its error.
struct Opened
{
    std::optional<QSCache::Result> result;
    QString said;
};

Opened open(const QSEntry &entry, bool force = false, const std::stop_token &stop = {})
{
    Opened opened;
    try {
        opened.result = QSCache::obtain(entry, force, now, stop);
        opened.said = opened.result->message;
    } catch (const QSError &error) {
        const bool network = error.errorCase() == QSError::Case::network;
        const bool disk = error.errorCase() == QSError::Case::io;
        opened.said = network ? error.payload() : disk ? u"disk: "_s + error.payload() : u"?"_s;
    }
    return opened;
}

QByteArray copyBytes(const QSEntry &entry = formEntry())
{
    return contents(QSCache::fileURL(entry));
}

/// True when the record speaks of the copy's bytes.
bool isPair()
{
    const std::optional<QSCacheMeta> meta = QSCache::meta(formEntry().id);
    return meta && meta->sha256 == QSCache::sha(copyBytes()) && meta->bytes == copyBytes().size();
}
} // namespace

class TestQSCache final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_user = std::make_unique<ScratchUser>();
        m_server = std::make_unique<AgencyServer>();
    }
    void cleanup()
    {
        m_server.reset();
        m_user.reset();
    }

    void aDownloadIsKeptAsSentWithItsRecord()
    {
        const QString moved = u"https://files.example/form"_s;
        m_server->answer(address, {Answer::redirect(moved.toLatin1())});
        m_server->answer(moved, {form(oldForm)});
        const Opened opened = open(formEntry());
        QCOMPARE(opened.said, u"Downloaded from the official site just now."_s);
        QCOMPARE(opened.result->outcome, Outcome::downloaded);
        QCOMPARE(opened.result->file, QSCache::fileURL(formEntry()));
        QVERIFY(opened.result->file.endsWith(u"/Official Forms Cache/co-answer.pdf"_s));
        QCOMPARE(copyBytes(), oldForm);
        const QSCacheMeta expected{.entryID = u"co-answer"_s,
                                   .url = address,
                                   .finalURL = moved,
                                   .downloadedAt = now,
                                   .lastCheckedAt = now,
                                   .etag = QString::fromLatin1(etag),
                                   .lastModified = QString::fromLatin1(modified),
                                   .sha256 = QSCache::sha(oldForm),
                                   .bytes = oldForm.size(),
                                   .contentType = u"application/pdf"_s,
                                   .updatedOnLastCheck = false};
        QCOMPARE(opened.result->meta, expected);
        QCOMPARE(QSCache::meta(u"co-answer"_s), expected);
        QCOMPARE(QSCache::sha("abc"),
                 u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
        for (const QString &path : {opened.result->file, QSCache::metaURL(u"co-answer"_s)}) {
            QCOMPARE(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther),
                     QFile::Permissions());
        }
        QCOMPARE(QSCache::cacheSize(),
                 oldForm.size() + contents(QSCache::metaURL(u"co-answer"_s)).size());
        QCOMPARE(QSCache::copyCount(), 1);
        QCOMPARE(QSCache::clear(), 1);
        QCOMPARE(QSCache::copyCount(), 0);
        QCOMPARE(QSCache::cacheSize(), 0);
        QVERIFY(!QSCache::hasCopy(formEntry()));
    }

    void everyAnswerHasItsOutcome_data()
    {
        QTest::addColumn<std::chrono::seconds>("age"); // of the saved copy; 0 for none
        QTest::addColumn<bool>("force");
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<std::optional<Outcome>>("outcome"); // none for an error
        QTest::addColumn<QString>("said");
        using std::chrono::seconds;
        const auto row = [](const char *name, seconds age, bool force, const Answer &answer,
                            bool asked, std::optional<Outcome> outcome, const QString &said) {
            QTest::newRow(name) << age << force << answer << asked << outcome << said;
        };
        const seconds day = 24h;
        const auto refused = [](const QString &reason) {
            return u"The form could not be downloaded: %1. The official link may have moved; the "
                   "\"Official page\" button opens the agency's forms page."_s.arg(reason);
        };
        const auto older = [](const QString &reason) {
            return u"The official link has a problem (%1); it may have moved. Showing the copy "
                   "downloaded Mar 2, 2027 12:00 PM. The Forms Last Checked screen lists links "
                   "that need attention."_s.arg(reason);
        };
        const QString noPDF = u"the official site did not send a valid PDF"_s;
        const Answer html = Answer::html("<html>moved</html>");

        row("none, a page in its place", 0s, false, html, true, {}, refused(noPDF));
        row("none, what only begins like a PDF", 0s, false, Answer::pdf("%PDF-1.4 moved"), true, {},
            refused(noPDF));
        row("none, no body", 0s, false, Answer::refusal(204), true, {}, refused(noPDF));
        row("none, gone", 0s, false, Answer::refusal(404), true, {},
            refused(u"the official site answered 404"_s));
        row("none, 304 all the same", 0s, false, Answer::refusal(304), true, {},
            refused(u"the official site answered 304"_s));
        row("6 days, not asked", 6 * day, false, form(newForm, false), false, Outcome::unchanged,
            u"Saved copy downloaded Mar 4, 2027 12:00 PM."_s);
        row("a second less than 7 days, not asked", 7 * day - 1s, false, form(newForm, false),
            false, Outcome::unchanged, u"Saved copy downloaded Mar 3, 2027 12:00 PM."_s);
        row("6 days, asked for", 6 * day, true, form(newForm), true, Outcome::unchanged, noNewer);
        row("7 days, the same", 7 * day, false, form(newForm), true, Outcome::unchanged, noNewer);
        row("8 days, sent again", 8 * day, false, form(oldForm, false), true, Outcome::unchanged,
            noNewer);
        row("8 days, a newer one", 8 * day, false, form(newForm, false), true, Outcome::updated,
            newer);
        row("8 days, a page in its place", 8 * day, false, html, true, Outcome::offlineCopy,
            older(noPDF));
        row("8 days, gone", 8 * day, false, Answer::refusal(410), true, Outcome::offlineCopy,
            older(u"the official site answered 410"_s));
    }

    void everyAnswerHasItsOutcome()
    {
        QFETCH(const std::chrono::seconds, age);
        QFETCH(const bool, force);
        QFETCH(const Answer, answer);
        QFETCH(const bool, asked);
        QFETCH(const std::optional<Outcome>, outcome);
        QFETCH(const QString, said);
        std::optional<QSCacheMeta> meta;
        if (age > 0s) {
            meta = saveCopy(age);
        }
        m_server->answer(address, {answer});
        const Opened opened = open(formEntry(), force);
        QCOMPARE(opened.said, said);
        QCOMPARE(opened.result ? std::optional(opened.result->outcome) : std::nullopt, outcome);
        const QList<AgencyServer::Request> requests = m_server->requests();
        QCOMPARE(requests.size(), asked ? 1 : 0);
        if (!meta) {
            QCOMPARE(QSCache::cacheSize(), 0);
            return;
        }
        if (asked) {
            QCOMPARE(requests.first().headers.value("if-none-match"), etag);
            QCOMPARE(requests.first().headers.value("if-modified-since"), modified);
            if (outcome != Outcome::offlineCopy) {
                meta->lastCheckedAt = now;
            }
            if (!answer.honoursConditions) { // the body was sent
                meta->downloadedAt = now;
                meta->updatedOnLastCheck = outcome == Outcome::updated;
            }
        }
        const QByteArray bytes = outcome == Outcome::updated ? newForm : oldForm;
        meta->sha256 = QSCache::sha(bytes);
        QCOMPARE(copyBytes(), bytes);
        QCOMPARE(QSCache::meta(formEntry().id), meta);
        QCOMPARE(opened.result->meta, *meta);
    }

    void whatOpensInABrowserIsNeverAsked_data()
    {
        QTest::addColumn<QSEntry>("entry");
        QTest::newRow("a filing page") << formEntry(QSKind::online);
        QTest::newRow("a page") << formEntry(QSKind::page);
        QTest::newRow("no https") << formEntry(QSKind::pdf, u"http://forms.example/answer.pdf"_s);
        QTest::newRow("no link") << formEntry(QSKind::pdf, {});
        QSEntry browserOnly = formEntry();
        browserOnly.browserOnly = true;
        QTest::newRow("a browser's site") << browserOnly;
    }

    void whatOpensInABrowserIsNeverAsked()
    {
        QFETCH(const QSEntry, entry);
        m_server->answerOthers(form(oldForm));
        QCOMPARE(open(entry, true).said, u"This official link opens in your web browser."_s);
        QVERIFY(m_server->requests().isEmpty());
    }

    void aPersonIsLedToASiteCheckedByHand()
    {
        const QString court = u"https://www.courts.ca.gov/documents/sc100.pdf"_s;
        m_server->answer(address, {Answer::redirect(court.toLatin1())});
        m_server->answer(court, {form(oldForm)});
        QCOMPARE(open(formEntry()).result->meta.finalURL, court);
    }

    void whatWasCutOffIsNoForm_data()
    {
        QTest::addColumn<QSKind>("kind");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("announced");
        QTest::addColumn<bool>("taken");
        const QByteArray whole = QpdfFile(smallPDF({})).write();
        const QByteArray cut = whole.left(whole.lastIndexOf("startxref"));
        QVERIFY(QSCache::valid(cut, formEntry())); // it can be repaired
        QTest::newRow("a PDF that ends with the connection")
            << QSKind::pdf << whole << false << true;
        QTest::newRow("a part of it") << QSKind::pdf << cut << false << false;
        QTest::newRow("the same as the agency has it") << QSKind::pdf << cut << true << true;
        const QByteArray zip = "PK\3\4 content PK\5\6" + QByteArray(18, '\0');
        QTest::newRow("a Word document that ends with the connection")
            << QSKind::document << zip << false << true;
        QTest::newRow("a part of that") << QSKind::document << zip.left(9) << false << false;
    }

    void whatWasCutOffIsNoForm()
    {
        QFETCH(const QSKind, kind);
        QFETCH(const QByteArray, body);
        QFETCH(const bool, announced);
        QFETCH(const bool, taken);
        m_server->answer(address, {{.body = body, .unannounced = !announced}});
        const Opened opened = open(formEntry(kind));
        QCOMPARE(opened.result.has_value(), taken);
        QCOMPARE(copyBytes(formEntry(kind)), taken ? body : QByteArray());
        QVERIFY2(taken || opened.said.contains(u": the connection broke off before the end."_s),
                 qPrintable(opened.said));
    }

    void aWordDocumentIsAZip()
    {
        const QSEntry entry = formEntry(QSKind::document);
        m_server->answer(address, {Answer::html("Petition"), Answer::pdf("PK\3\4")});
        QVERIFY(open(entry).said.contains(u": the official site did not send a valid file."_s));
        QCOMPARE(open(entry).result->outcome, Outcome::downloaded);
        QVERIFY(QSCache::hasCopy(entry) && QSCache::fileURL(entry).endsWith(u"/co-answer.docx"_s));
        QCOMPARE(copyBytes(entry), "PK\3\4");
    }

    void aCopyThatSomebodyChangedIsKeptAside()
    {
        const QSEntry entry = formEntry(QSKind::document);
        const QByteArray filledIn = "PK\3\4 Rosa";
        m_server->answer(address, {Answer::pdf("PK\3\4")});
        QCOMPARE(open(entry).said, u"Downloaded from the official site just now."_s);
        for (const QString &number : {u"1"_s, u"2"_s}) {
            writeFile(QSCache::fileURL(entry), filledIn);
            const QString said = open(entry).said;
            const QString kept =
                QSInfo::cacheFolder().filePath(u"Changed Here/co-answer %1.docx"_s.arg(number));
            QVERIFY2(said.endsWith(kept), qPrintable(said));
            QCOMPARE(contents(kept), filledIn);
            QCOMPARE(copyBytes(entry), "PK\3\4");
        }
        QSCache::clear();
        QCOMPARE(QDir(QSInfo::cacheFolder().filePath(u"Changed Here"_s)).count(), 2U + 2U);
    }

    void aRecordThatDoesNotReadCountsAsNoCopy_data()
    {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        const auto row = [](const char *name, const QByteArray &from, const QByteArray &to) {
            QTest::newRow(name) << from << to;
        };
        row("cut off", "}", "");
        row("a missing value", "\"sha256\"", "\"sha\"");
        row("a date as text", "\"lastCheckedAt\": 1", "\"lastCheckedAt\": \"1\", \"x\": 1");
    }

    void aRecordThatDoesNotReadCountsAsNoCopy()
    {
        QFETCH(const QByteArray, from);
        QFETCH(const QByteArray, to);
        saveCopy(1h);
        const QString path = QSCache::metaURL(formEntry().id);
        const QByteArray before = contents(path);
        const QByteArray after = QByteArray(before).replace(from, to);
        QVERIFY(after != before);
        writeFile(path, after);
        QVERIFY(!QSCache::hasCopy(formEntry()));
        QCOMPARE(open(formEntry()).result->outcome, Outcome::downloaded);
        QVERIFY(!m_server->requests().first().headers.contains("if-none-match"));
        QVERIFY(isPair());
    }

    /// A kill between copy and record, or a new link in the directory.
    void aRecordOfOtherBytesAsksWithoutConditions_data()
    {
        QTest::addColumn<QByteArray>("copy"); // as found, beside the record of the old form
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("reachable");
        QTest::addColumn<Outcome>("outcome");
        const QString moved = u"https://forms.example/2027/answer.pdf"_s;
        QTest::newRow("the site's own") << newForm << address << true << Outcome::unchanged;
        QTest::newRow("another one") << pdf("other") << address << true << Outcome::updated;
        QTest::newRow("out of reach") << newForm << address << false << Outcome::offlineCopy;
        QTest::newRow("not a form") << QByteArray("%PDF") << address << true << Outcome::downloaded;
        QTest::newRow("a new link") << oldForm << moved << true << Outcome::updated;
        QTest::newRow("a new link, out of reach")
            << oldForm << moved << false << Outcome::offlineCopy;
    }

    void aRecordOfOtherBytesAsksWithoutConditions()
    {
        QFETCH(const QByteArray, copy);
        QFETCH(const QString, url);
        QFETCH(const bool, reachable);
        QFETCH(const Outcome, outcome);
        saveCopy(1h);
        m_server->answer(url, {form(newForm)});
        writeFile(QSCache::fileURL(formEntry()), copy);
        if (!reachable) {
            m_server->goAway();
        }
        QCOMPARE(open(formEntry(QSKind::pdf, url)).result->outcome, outcome);
        QCOMPARE(copyBytes(), reachable ? newForm : copy);
        if (reachable) {
            QCOMPARE(m_server->requests().size(), 1);
            QVERIFY(!m_server->requests().first().headers.contains("if-none-match"));
            QVERIFY(!m_server->requests().first().headers.contains("if-modified-since"));
            QVERIFY(isPair());
        }
    }

    void aDownloadCutShortLeavesTheOldCopy_data()
    {
        QTest::addColumn<bool>("hasCopy");
        QTest::addColumn<std::function<void(AgencyServer &, std::stop_source &)>>("cut");
        QTest::addColumn<QString>("said"); // with a mark where a reason stands
        using Cut = std::function<void(AgencyServer &, std::stop_source &)>;
        const Cut pull = [](AgencyServer &server, std::stop_source &) { server.goAway(); };
        const Cut stop = [](AgencyServer &, std::stop_source &source) { source.request_stop(); };
        const QString none = u"Could not download the form from the official site: |. An internet "
                             "connection is needed the first time a form is opened."_s;
        const QString older = u"Could not reach the official site (|). Showing the copy downloaded "
                              "Mar 2, 2027 12:00 PM."_s;
        QTest::newRow("first time, network pulled") << false << pull << none;
        QTest::newRow("network pulled") << true << pull << older;
        QTest::newRow("stopped") << true << stop << u"The download was stopped."_s;
    }

    void aDownloadCutShortLeavesTheOldCopy()
    {
        QFETCH(const bool, hasCopy);
        QFETCH(const std::function<void(AgencyServer &, std::stop_source &)>, cut);
        QFETCH(const QString, said);
        std::optional<QSCacheMeta> meta;
        if (hasCopy) {
            meta = saveCopy(8 * 24h);
        }
        Answer slow = form(newForm + QByteArray(100'000, '\n'), false);
        slow.drip = 20ms;
        slow.dripBytes = 1000;
        m_server->answer(address, {slow});
        std::stop_source source;
        auto opening = std::async(std::launch::async,
                                  [&] { return open(formEntry(), false, source.get_token()); });
        QTRY_COMPARE(m_server->requests().size(), 1);
        QVERIFY(opening.wait_for(200ms) == std::future_status::timeout);
        cut(*m_server, source);
        const Opened opened = opening.get();
        QVERIFY2(opened.said.startsWith(said.section(u'|', 0, 0)) &&
                     opened.said.endsWith(said.section(u'|', 1)) &&
                     opened.said.size() >= said.size(),
                 qPrintable(opened.said));
        QCOMPARE(QSCache::meta(formEntry().id), meta);
        QCOMPARE(copyBytes(), hasCopy ? oldForm : QByteArray());
        QVERIFY(hasCopy || QSCache::cacheSize() == 0);
    }

    void aFullDiskLeavesTheOldCopy()
    {
        const SmallDisk disk(m_user->path(u"data"_s), 1024 * 1024);
        if (!disk.mounted()) {
            QSKIP("This process may not mount a small file system");
        }
        const QSCacheMeta meta = saveCopy(8 * 24h);
        QFile filler(m_user->path(u"data/filler"_s));
        QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (filler.write(QByteArray(1000, 'x')) == 1000) {
        }
        // nothing newer: the copy is shown though the check can't be recorded
        QTest::ignoreMessage(QtWarningMsg, "The form could not be saved: No space left on device");
        QCOMPARE(open(formEntry()).said, noNewer);
        m_server->answer(address, {form(newForm, false)});
        QCOMPARE(open(formEntry()).said,
                 u"disk: The form could not be saved: No space left on device"_s);
        QCOMPARE(copyBytes(), oldForm);
        QCOMPARE(QSCache::meta(formEntry().id), meta);
        QVERIFY(filler.remove());
        QCOMPARE(open(formEntry()).result->outcome, Outcome::updated);
        QVERIFY(isPair());
    }

    void twoOpeningsAtOnceLeaveAPair()
    {
        QList<Answer> script;
        for (int number = 0; number < 60; ++number) {
            script.append(form(pdf(QByteArray::number(number)), false));
        }
        m_server->answer(address, script);
        for (int round = 0; round < 10; ++round) {
            std::array<std::future<Opened>, 6> openings;
            for (std::future<Opened> &opening : openings) {
                opening = std::async(std::launch::async, [] { return open(formEntry(), true); });
            }
            for (std::future<Opened> &opening : openings) {
                const Opened opened = opening.get();
                QVERIFY2(opened.result, qPrintable(opened.said));
            }
            QVERIFY(isPair());
        }
    }

    void aCopyDeletedWhileItsSiteIsAskedComesAgain()
    {
        saveCopy(8 * 24h);
        Answer same = Answer::refusal(304);
        same.delay = 600ms;
        m_server->answer(address, {same, form(newForm)});
        auto opening = std::async(std::launch::async, [] { return open(formEntry()); });
        QTRY_COMPARE(m_server->requests().size(), 1);
        QSCache::clear();
        QCOMPARE(opening.get().result->outcome, Outcome::downloaded);
        QVERIFY(isPair() && copyBytes() == newForm);
    }

    void noIdLeavesTheFolder()
    {
        const QString folder = QFileInfo(QSCache::metaURL(u"a"_s)).path();
        for (const QString &id : {u"../../a"_s, u"/etc/a"_s, u".."_s, u"a/.."_s}) {
            QCOMPARE(QFileInfo(QDir::cleanPath(QSCache::metaURL(id))).path(), folder);
        }
    }

private:
    /// A saved copy of the old form, last checked so long ago.
    QSCacheMeta saveCopy(std::chrono::seconds age)
    {
        m_server->answer(address, {form(oldForm)});
        (void)QSCache::obtain(formEntry(), false, now.addSecs(-age.count()));
        m_server->forgetRequests();
        return QSCache::meta(formEntry().id).value();
    }

    std::unique_ptr<ScratchUser> m_user;
    std::unique_ptr<AgencyServer> m_server;
};

QTEST_GUILESS_MAIN(TestQSCache)
#include "tst_qscache.moc"
