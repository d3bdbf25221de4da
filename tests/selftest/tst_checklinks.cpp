#include "AgencyServer.h"
#include "NetworkChecks.h"
#include "QSDirectory.h"
#include "QSExport.h"
#include "QSPDF.h"
#include "QSTestRun.h"
#include "ScratchUser.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using Answer = AgencyServer::Answer;

namespace {
const QString address = u"https://agency.example/form.pdf"_s;

QSEntry entry(const QString &url = address, QSKind kind = QSKind::pdf)
{
    QSEntry entry;
    entry.id = u"form"_s;
    entry.j = u"CO"_s;
    entry.title = u"Form"_s;
    entry.url = url;
    entry.kind = kind;
    entry.fillable = true;
    return entry;
}

QByteArray plainPDF(const QString &text)
{
    return QSExport::pdf({u"Form"_s, {{QSBlock::Kind::paragraph, {text}}}});
}

Answer form(const QByteArray &etag, bool honoursConditions = true)
{
    Answer answer = Answer::pdf(QSPDF::practiceForm(), etag);
    answer.honoursConditions = honoursConditions;
    return answer;
}
} // namespace

/// The network check on small directories, with the agencies played on this machine.
class TestCheckLinks final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFaultIsReportedInItsWords_data()
    {
        QTest::addColumn<QSEntry>("given");
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QString>("link");     // null where the link is not asked
        QTest::addColumn<QString>("download"); // null where nothing is downloaded
        const auto row = [](const char *name, const QSEntry &given, const Answer &answer,
                            const QString &link, const QString &download) {
            QTest::newRow(name) << given << answer << link << download;
        };
        const QString well = u"PASS  CO Form"_s;
        const QString none;
        QSEntry shy = entry(address, QSKind::page);
        row("a page that answers", shy, Answer::html("here"), well, none);
        row("a broken link", shy, Answer::refusal(404), u"FAIL  CO Form: the site answered 404"_s,
            none);
        shy.browserOnly = true;
        row("a site that turns programs away is explained", shy, Answer::refusal(403),
            u"PASS  CO Form: this official site blocks automated checks; it opens normally in a "
            "web browser"_s,
            none);
        row("but not when the page is gone", shy, Answer::refusal(404),
            u"FAIL  CO Form: the site answered 404"_s, none);
        row("a form that can be filled in", entry(), form("\"1\""), well,
            u"PASS  CO Form: 6 fields \u2014 listed as fillable"_s);
        row("a form whose flag is wrong", entry(), Answer::pdf(plainPDF(u"Sign here."_s), "\"1\""),
            well, u"FAIL  CO Form: 0 fields \u2014 listed as fillable"_s);
        row("a page in a PDF's place", entry(), Answer::html("<html>moved</html>"),
            u"FAIL  CO Form: expected a PDF but the site sent text/html; charset=utf-8"_s,
            u"FAIL  CO Form: The form could not be downloaded: the official site did not send a "
            "valid PDF. The official link may have moved; the \"Official page\" button opens the "
            "agency's forms page."_s);
        row("California's courts are left alone", entry(u"https://courts.ca.gov/sc100.pdf"_s),
            form("\"1\""), none,
            u"PASS  CO Form: California court form - checked by hand, not downloaded in bulk "
            "(no-bots terms)"_s);
    }

    void everyFaultIsReportedInItsWords()
    {
        QFETCH(const QSEntry, given);
        QFETCH(const Answer, answer);
        QFETCH(const QString, link);
        QFETCH(const QString, download);
        AgencyServer server;
        server.answer(given.url, {answer});
        QStringList lines = check(given);
        lines.removeLast(); // of the second look
        QStringList expected = {link, download};
        expected.removeAll(QString());
        QCOMPARE(lines, expected);
        QCOMPARE(server.requests().isEmpty(), link.isNull());
    }

    void noRedirectLeadsToCaliforniasCourts()
    {
        AgencyServer server;
        const QString court = u"https://www.courts.ca.gov/documents/sc100.pdf"_s;
        const Answer moved = Answer::redirect(court.toLatin1());
        const Answer here = form("\"1\"");
        server.answer(court, {here});
        server.answer(address, {moved});
        const QStringList lines = check(entry());
        QVERIFY2(lines.at(1).startsWith(u"FAIL  CO Form: The form could not be downloaded: the "
                                        "official site answered 301."),
                 qPrintable(lines.at(1)));
        server.answer(address, {here, here, here, moved}); // moved before the second look
        QVERIFY(check(entry()).constLast().startsWith(u"FAIL  CO Form: The official link has a "));
        for (const QList<AgencyServer::Request> asked = server.requests();
             const AgencyServer::Request &request : asked) {
            QCOMPARE(request.url, address);
        }
    }

    void theSecondLookPassesWithAnAnswerToItsQuestion_data()
    {
        QTest::addColumn<QList<Answer>>("answers"); // to HEAD, to the two GETs, to the second look
        QTest::addColumn<QString>("line");
        const Answer first = form("\"1\"");
        const auto row = [&](const char *name, const Answer &given, const Answer &second,
                             const QString &line) {
            QTest::newRow(name) << QList<Answer>{given, given, given, second} << line;
        };
        row("not modified", first, first,
            u"PASS  CO Form: Checked with the official site just now: no newer version."_s);
        row("a newer file", first, Answer::pdf(plainPDF(u"Newer."_s), "\"2\""),
            u"PASS  CO Form: The official site has a newer version of this form. The new version "
            "was downloaded and replaces the old copy."_s);
        const Answer deaf = form("\"1\"", false);
        row("the same file again", deaf, deaf,
            u"FAIL  CO Form: the site ignores the condition of the request and sent the same file "
            "again"_s);
        row("gone by then", first, Answer::refusal(500),
            u"FAIL  CO Form: The official link has a problem (the official site answered 500)"_s);
    }

    void theSecondLookPassesWithAnAnswerToItsQuestion()
    {
        QFETCH(const QList<Answer>, answers);
        QFETCH(const QString, line);
        AgencyServer server;
        server.answer(address, answers);
        const QString said = check(entry()).constLast();
        QVERIFY2(said.startsWith(line), qPrintable(said));
        QVERIFY(server.requests().constLast().headers.contains("if-none-match"));
    }

private:
    static QStringList check(const QSEntry &given)
    {
        const ScratchUser user;
        QSDirectory directory;
        directory.entries = {given};
        QSTestRun run;
        NetworkChecks::run(directory, run);
        return run.lines;
    }
};

QTEST_MAIN(TestCheckLinks)
#include "tst_checklinks.moc"
