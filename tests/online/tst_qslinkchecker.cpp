#include "AgencyServer.h"
#include "QSLinkChecker.h"
#include "QSNet.h"

#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <memory>
#include <stop_token>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Answer = AgencyServer::Answer;

namespace {
const QString address = QStringLiteral("https://agency.example/form");
const QString botNote = QStringLiteral(
    "this official site blocks automated checks; it opens normally in a web browser");

Answer sent(const QByteArray &body, const QByteArray &contentType)
{
    Answer answer;
    answer.body = body;
    if (!contentType.isEmpty()) {
        answer.headers = {{"Content-Type", contentType}};
    }
    return answer;
}

/// A directory whose links are these and no others.
QSDirectory directoryOf(const QStringList &urls)
{
    QSDirectory directory;
    for (const QString &url : urls) {
        QSEntry entry;
        entry.title = url;
        entry.url = url;
        entry.kind = QSKind::page;
        directory.entries.append(entry);
    }
    return directory;
}

QStringList urlsOf(const QList<QSLinkChecker::Check> &checks)
{
    QStringList urls;
    for (const QSLinkChecker::Check &check : checks) {
        urls.append(check.url);
    }
    return urls;
}
} // namespace

class TestQSLinkChecker final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_server = std::make_unique<AgencyServer>(); }
    void cleanup() { m_server.reset(); }

    void everyAnswerHasItsResult_data()
    {
        QTest::addColumn<QSDirectory::Link>("link");
        QTest::addColumn<Answer>("head");
        QTest::addColumn<Answer>("get");
        QTest::addColumn<QByteArray>("asked");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("note"); // null where all is well
        const QSDirectory::Link page{u"Page"_s, address, false, false};
        const QSDirectory::Link form{u"Form"_s, address, false, true};
        const QSDirectory::Link shy{u"Shy"_s, address, true, false};
        const QString well;
        const QString silent = u""_s;
        const auto row = [](const char *name, const QSDirectory::Link &link, const Answer &head,
                            const Answer &get, const QByteArray &asked, int status,
                            const QString &note) {
            QTest::newRow(name) << link << head << get << asked << status << note;
        };
        const Answer html = Answer::html("<html>here</html>");
        const Answer gone = Answer::refusal(404);
        const Answer refused = Answer::refusal(403);
        row("a HEAD that answers is enough", page, html, gone, "HEAD", 200, well);
        row("HEAD refused", page, Answer::refusal(405), html, "HEAD GET", 206, well);
        row("gone", page, gone, gone, "HEAD GET", 404, silent);
        row("a PDF is looked at though HEAD answers", form, html, Answer::pdf("%PDF-1.7"),
            "HEAD GET", 206, well);
        row("a PDF by its type alone", form, html, sent("\n%PDF-", "Application/PDF;v=1"),
            "HEAD GET", 206, well);
        row("a PDF by its bytes alone", form, html, sent("%PDF-1.7", "application/octet-stream"),
            "HEAD GET", 206, well);
        row("a page in a PDF's place", form, html, sent("<html>moved</html>", "text/html"),
            "HEAD GET", 206, u"expected a PDF but the site sent text/html"_s);
        row("no type in a PDF's place", form, html, sent("moved", {}), "HEAD GET", 206,
            u"expected a PDF but the site sent something else"_s);
        row("a browser's site refuses", shy, refused, refused, "HEAD GET", 403, botNote);
        row("a browser's site has enough", shy, refused, Answer::refusal(429), "HEAD GET", 429,
            botNote);
        row("a browser's site has lost it", shy, gone, gone, "HEAD GET", 404, silent);
        row("another site refuses", page, refused, refused, "HEAD GET", 403, silent);
        row("no link", {u"Page"_s, u"https://"_s, false, false}, html, html, "", 0,
            u"not a valid link"_s);
        row("half a link", {u"Page"_s, u"https://agency .example/"_s, false, false}, html, html, "",
            0, u"not a valid link"_s);
    }

    void everyAnswerHasItsResult()
    {
        QFETCH(const QSDirectory::Link, link);
        QFETCH(const Answer, head);
        QFETCH(const Answer, get);
        QFETCH(const QByteArray, asked);
        QFETCH(const int, status);
        QFETCH(const QString, note);
        m_server->answerHead(address, {head});
        m_server->answer(address, {get});
        const QSLinkChecker::Check check = QSLinkChecker::check(link);
        QByteArrayList methods;
        const QList<AgencyServer::Request> requests = m_server->requests();
        for (const AgencyServer::Request &request : requests) {
            methods.append(request.method);
            QCOMPARE(request.headers.value("range"),
                     request.method == "GET" ? QByteArray("bytes=0-2047") : QByteArray());
        }
        QCOMPARE(methods.join(' '), asked);
        QCOMPARE(check.status, status);
        QCOMPARE(check.note, note);
        QCOMPARE(check.ok, note.isNull());
        QCOMPARE(check.needsAttention(), !check.ok && !link.skip);
        QCOMPARE(check.finalURL, asked.isEmpty() ? QString() : address);
        QCOMPARE(check.url, link.url);
        QCOMPARE(check.label, link.label);
    }

    void aSiteThatIgnoresTheRangeSendsNoWholeForm()
    {
        Answer endless = sent("%PDF-" + QByteArray(100'000, ' '), {});
        endless.honoursRanges = false;
        endless.announced = 200'000; // never comes
        m_server->answer(address, {endless});
        const QSLinkChecker::Check check = QSLinkChecker::check({u"Form"_s, address, false, true});
        QVERIFY2(check.ok, qPrintable(check.note)); // waiting for the rest would end in an error
    }

    void noRedirectLeadsToASiteCheckedByHand_data()
    {
        QTest::addColumn<bool>("expectPDF");
        QTest::addColumn<QString>("note");
        QTest::newRow("a page that was moved answered") << false << QString();
        QTest::newRow("a PDF that was moved did not come")
            << true << u"expected a PDF but the site sent something else"_s;
    }

    void noRedirectLeadsToASiteCheckedByHand()
    {
        QFETCH(const bool, expectPDF);
        QFETCH(const QString, note);
        const QString agency = u"https://agency.example/2027"_s;
        const QString court = u"https://selfhelp.courts.ca.gov/sc100.pdf"_s;
        m_server->answer(address, {Answer::redirect(agency.toLatin1())});
        m_server->answer(agency, {Answer::redirect(court.toLatin1(), 302)});
        m_server->answer(court, {Answer::pdf("%PDF-1.7")});
        const QSLinkChecker::Check check =
            QSLinkChecker::check({u"Link"_s, address, false, expectPDF});
        for (const QList<AgencyServer::Request> asked = m_server->requests();
             const AgencyServer::Request &request : asked) {
            QVERIFY(request.url != court);
        }
        QCOMPARE(check.status, 302);
        QCOMPARE(check.finalURL, agency);
        QCOMPARE(check.note, note);
        QCOMPARE(check.ok, note.isEmpty());
    }

    void whereItWasMovedAndWhyNothingCame()
    {
        const QString moved = u"https://new.example/form"_s;
        m_server->answer(address, {Answer::redirect(moved.toLatin1())});
        m_server->answer(moved, {Answer::html("<html>here</html>")});
        const QSDirectory::Link link{u"Page"_s, address, false, false};
        QCOMPARE(QSLinkChecker::check(link).finalURL, moved);
        m_server->goAway();
        const std::optional<QString> reason = QSNet::fetch({.url = address}).error;
        QVERIFY(reason && !reason->isEmpty());
        const QSLinkChecker::Check check = QSLinkChecker::check(link);
        QCOMPARE(check.note, *reason);
        QCOMPARE(check.status, 0);
        QVERIFY(check.needsAttention() && check.finalURL.isEmpty());
    }

    void allLinksAreAskedOnceInOrderAndGently()
    {
        QStringList urls{u"https://www.courts.ca.gov/fw-001.pdf"_s};
        for (int number = 0; number < 10; ++number) { // one host first, to fill all its places
            urls.append(u"https://big.example/%1"_s.arg(number));
        }
        for (int number = 0; number < 10; ++number) {
            urls.append(u"https://small%1.example/"_s.arg(number % 5) + QString::number(number));
        }
        urls.append({u"https://www.sos.ca.gov/llc"_s, u"https://big.example/0#part"_s, u"none"_s});
        Answer slow = Answer::html("<html>here</html>");
        slow.delay = 200ms;
        for (const QString &url : std::as_const(urls)) {
            m_server->answer(url, {slow});
        }

        QList<std::pair<int, int>> reports;
        const QList<QSLinkChecker::Check> checks = QSLinkChecker::checkAll(
            directoryOf(urls), QSLinkChecker::parallelChecks, [&reports](int done, int total) {
                reports.append({done, total});
            });

        urls.removeFirst();
        QCOMPARE(urlsOf(checks), urls);
        QCOMPARE(reports.size(), urls.size());
        for (int done = 1; done <= reports.size(); ++done) {
            QCOMPARE(reports.at(done - 1), std::pair(done, static_cast<int>(urls.size())));
        }
        QCOMPARE(std::ranges::count(checks, true, &QSLinkChecker::Check::ok), urls.size() - 1);
        QCOMPARE(checks.last().note, u"not a valid link"_s);

        QStringList asked;
        const QList<AgencyServer::Request> requests = m_server->requests();
        for (const AgencyServer::Request &request : requests) {
            asked.append(request.url);
        }
        // a host whose places are taken does not hold up the others
        QVERIFY(asked.indexOf(QRegularExpression(u"https://small.*"_s)) <
                asked.lastIndexOf(QRegularExpression(u"https://big.*"_s)));
        QStringList once = urls.mid(0, urls.size() - 2); // neither the fragment's link nor the last
        once.sort();
        asked.sort();
        QCOMPARE(asked, once);
        QCOMPARE(m_server->mostAtOnce(u"big.example"_s), QSLinkChecker::parallelChecksPerHost);
        const int most = m_server->mostAtOnce();
        QVERIFY2(most > QSLinkChecker::parallelChecksPerHost &&
                     most <= QSLinkChecker::parallelChecks,
                 qPrintable(QString::number(most)));
    }

    void whatAStopCutShortIsNoResult()
    {
        QStringList urls;
        for (int number = 0; number < 12; ++number) {
            urls.append(u"https://agency%1.example/"_s.arg(number));
            Answer answer = Answer::html("<html>here</html>");
            answer.silent = number > 0;
            m_server->answer(urls.last(), {answer});
        }
        std::stop_source stop;
        const QList<QSLinkChecker::Check> checks = QSLinkChecker::checkAll(
            directoryOf(urls), 3, [&stop](int, int) { stop.request_stop(); }, stop.get_token());
        QCOMPARE(urlsOf(checks), QStringList{urls.first()});
        QVERIFY(m_server->requests().size() <= 3);
    }

private:
    std::unique_ptr<AgencyServer> m_server;
};

QTEST_GUILESS_MAIN(TestQSLinkChecker)
#include "tst_qslinkchecker.moc"
