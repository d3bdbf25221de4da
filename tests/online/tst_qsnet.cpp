#include "AgencyServer.h"
#include "QSNet.h"

#include <QTest>

#include <algorithm>
#include <array>
#include <future>
#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Answer = AgencyServer::Answer;
using Method = QSNet::Request::Method;

namespace {
const QString form = u"https://forms.example.gov/form.pdf"_s;
const QString tooLarge = u"the file is larger than 64 MB"_s;
const QString brokenOff = u"the connection broke off before the end"_s;
const QString tooSilent = u"the site did not answer in time"_s;
const QString endless = u"the site's answer does not end"_s;
const QString insecure = u"its link is not a secure one (https)"_s;
const QString malformed = u"its link is not a proper web address"_s;

/// What a test expects of an answer: status, end of the final address, and body.
struct Expected
{
    int status = 200;
    QString finalURL = form;
    QByteArray body = {};
};

std::future<QSNet::Answer> inBackground(const QSNet::Request &request,
                                        const std::stop_token &stop = {})
{
    return std::async(std::launch::async, [=] { return QSNet::fetch(request, stop); });
}
} // namespace
Q_DECLARE_METATYPE(Answer)
Q_DECLARE_METATYPE(Expected)
Q_DECLARE_METATYPE(QSNet::Request)

class TestQSNet : public QObject
{
    Q_OBJECT

    std::unique_ptr<AgencyServer> m_server;

    /// "/steps/n" redirects to "/steps/n-1", "/steps/0" is the form.
    void scriptSteps(int count)
    {
        const QString step = u"https://steps.example.gov/%1"_s;
        m_server->answer(step.arg(0), {Answer::pdf("%PDF at last")});
        for (int number = 1; number <= count; ++number) {
            m_server->answer(step.arg(number),
                             {Answer::redirect('/' + QByteArray::number(number - 1), 301)});
        }
    }

private Q_SLOTS:
    void init() { m_server = std::make_unique<AgencyServer>(); }
    void cleanup() { m_server.reset(); }

    void fixedHeadersComeFirstAndCannotBeReplaced()
    {
        m_server->answer(form, {{.body = "%PDF", .headers = {{"Set-Cookie", "a=b; Path=/"}}}});
        const QSNet::Request request{.url = form,
                                     .headers = {{"user-agent", "another"},
                                                 {"ACCEPT", "nothing"},
                                                 {"Accept-Language", "tlh"},
                                                 {"If-None-Match", "\"1\"\r\nX-Smuggled: yes"}}};
        QCOMPARE(QSNet::fetch(request).error, std::nullopt);
        QCOMPARE(QSNet::fetch(request).error, std::nullopt);

        const AgencyServer::Request asked = m_server->requests().last();
        QCOMPARE(asked.headerNames, (QList<QByteArray>{"host", "user-agent", "accept",
                                                       "accept-language", "if-none-match"}));
        QCOMPARE(asked.headers.value("user-agent"), QSNet::userAgent.toUtf8());
        QCOMPARE(asked.headers.value("accept"),
                 "text/html,application/xhtml+xml,application/pdf;q=0.9,*/*;q=0.8");
        QCOMPARE(asked.headers.value("accept-language"), "en-US,en;q=0.9");
    }

    void whatAnswers_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QSNet::Request>("request");
        QTest::addColumn<Expected>("expected");

        const Answer pdf = Answer::pdf("%PDF-1.7 form", "\"v1\"");
        QTest::newRow("a form comes whole")
            << pdf << QSNet::Request{form} << Expected{.body = "%PDF-1.7 form"};
        QTest::newRow("HEAD has no body")
            << pdf << QSNet::Request{form, Method::head} << Expected{};
        QTest::newRow("HEAD may announce more than is taken")
            << Answer{.announced = 5'000'000'000} << QSNet::Request{form, Method::head}
            << Expected{};
        QTest::newRow("not modified is passed on")
            << pdf << QSNet::Request{.url = form, .headers = {{"If-None-Match", "\"v1\""}}}
            << Expected{.status = 304};
        QTest::newRow("a part is passed on")
            << pdf << QSNet::Request{.url = form, .headers = {{"Range", "bytes=0-3"}}}
            << Expected{.status = 206, .body = "%PDF"};
        QTest::newRow("a refusal is an answer") << Answer::html("no", 403) << QSNet::Request{form}
                                                << Expected{.status = 403, .body = "no"};
        QTest::newRow("a body without announced size ends with the connection")
            << Answer{.body = "%PDF", .unannounced = true} << QSNet::Request{form}
            << Expected{.body = "%PDF"};
        QTest::newRow("enough of a site that ignores ranges, however large the file")
            << Answer{.body = "%PDF" + QByteArray(1 << 20, ' '), .announced = 5'000'000'000}
            << QSNet::Request{.url = form, .enough = 4} << Expected{.body = "%PDF"};
        QTest::newRow("less than enough is taken as it is")
            << pdf << QSNet::Request{.url = form, .enough = 1024}
            << Expected{.body = "%PDF-1.7 form"};
        QTest::newRow("a slow site that goes on is waited for")
            << Answer{.body = QByteArray(14, 'x'), .drip = 150ms}
            << QSNet::Request{.url = form, .idleTimeout = 1s}
            << Expected{.body = QByteArray(14, 'x')};
        QTest::newRow("ten redirects")
            << Answer::redirect("https://steps.example.gov/9", 302) << QSNet::Request{form}
            << Expected{.finalURL = u"https://steps.example.gov/0"_s, .body = "%PDF at last"};
    }
    void whatAnswers()
    {
        QFETCH(const Answer, answer);
        QFETCH(const QSNet::Request, request);
        QFETCH(const Expected, expected);
        m_server->answer(form, {answer});
        scriptSteps(9);

        const QSNet::Answer came = QSNet::fetch(request);
        QCOMPARE(came.error, std::nullopt);
        QCOMPARE(came.response->status, expected.status);
        QCOMPARE(came.response->finalURL, expected.finalURL);
        QCOMPARE(*came.body, expected.body);
    }

    void onlyHangingUpTellsNoEnd()
    {
        const AgencyServer::Headers chunked{{"Transfer-Encoding", "chunked"}};
        m_server->answer(
            form, {{.body = "%PDF"},
                   {.body = "4\r\n%PDF\r\n0\r\n\r\n", .headers = chunked, .unannounced = true},
                   {.body = "%PDF", .unannounced = true}});
        for (const bool told : {true, true, false}) {
            const QSNet::Answer came = QSNet::fetch({form});
            QCOMPARE(came.body, "%PDF");
            QCOMPARE(came.response->endIsTold, told);
        }
    }

    void headersAreThoseOfTheLastAnswer()
    {
        Answer first = Answer::redirect("/new.pdf");
        first.headers.emplaceBack("ETag", "\"old\"");
        Answer last = Answer::pdf("%PDF");
        last.headers.append({{"X-Note", "one"}, {"x-note", "two"}});
        m_server->answer(form, {first});
        m_server->answer(u"https://forms.example.gov/new.pdf"_s, {last});

        const std::optional<QSNet::Response> response = QSNet::fetch({form}).response;
        QVERIFY(response);
        QCOMPARE(response->header("Content-Type"), u"application/pdf"_s);
        QCOMPARE(response->headers.value("x-note"), "one, two");
        QCOMPARE(response->header("ETag"), std::nullopt);
    }

    void whatFails_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QString>("error");

        const auto answered = [](const char *rule, const Answer &answer, const QString &error) {
            QTest::newRow(rule) << form << answer << error;
        };
        Answer leadingOn = Answer::redirect("https://steps.example.gov/0");
        leadingOn.unannounced = true;
        leadingOn.dripBytes = 1 << 16;
        leadingOn.endless = "<p>further on</p>";
        answered("a redirect to http", Answer::redirect("http://forms.example.gov/"), insecure);
        answered("an eleventh redirect", Answer::redirect("https://steps.example.gov/10"),
                 u"the site passes requests on without end"_s);
        answered("less than was announced", {.body = "%PDF rest", .announced = 9, .cutAfter = 4},
                 brokenOff);
        answered("a gigantic file announced", {.announced = 5'000'000'000}, tooLarge);
        answered("a gigantic file unannounced",
                 {.body = QByteArray(QSNet::bodyLimit + 1, ' '),
                  .unannounced = true,
                  .drip = 1ms,
                  .dripBytes = 1 << 20},
                 tooLarge);
        answered("header lines without end",
                 {.status = 0,
                  .body = "HTTP/1.1 200 \r\n",
                  .dripBytes = 1 << 16,
                  .endless = "X-More: and more\r\n"},
                 endless);
        answered("provisional answers without end",
                 {.status = 0,
                  .dripBytes = 1 << 16,
                  .endless = "HTTP/1.1 103 \r\nLink: </style>\r\n\r\n"},
                 endless);
        answered("a redirect that does not end", leadingOn, endless);
        answered("silence from the start", {.silent = true}, tooSilent);
        answered("silence inside the body", {.body = "%PDF", .announced = 9}, tooSilent);

        const auto asked = [](const char *rule, const QString &url, const QString &error) {
            QTest::newRow(rule) << url << Answer::pdf("%PDF") << error;
        };
        asked("a certificate of nobody's", u"https://www.bad.example/form.pdf"_s,
              u"the site could not prove that it is the right one"_s);
        asked("http", u"http://forms.example.gov/form.pdf"_s, insecure);
        asked("a file", u"file:///etc/passwd"_s, insecure);
        asked("no host", u"https://"_s, malformed);
        asked("no address", {}, malformed);
        asked("a line end inside", u"https://forms.example.gov/\r\nX: y"_s, malformed);
    }
    void whatFails()
    {
        QFETCH(const QString, url);
        QFETCH(const Answer, answer);
        QFETCH(const QString, error);
        if (url.startsWith(u"https"_s)) {
            m_server->answer(url, {answer});
        }
        scriptSteps(10);

        const QSNet::Answer came = QSNet::fetch({.url = url, .idleTimeout = 400ms});
        QCOMPARE(came.error.value_or(QString()), error);
        QVERIFY(!came.body && !came.response);
    }

    /// Each piece of them comes well within the time for silence.
    void whatDripsIsNotWaitedFor_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QSNet::Request>("request");
        const QSNet::Request urgent{.url = form, .wholeTimeout = 700ms};
        const QSNet::Request lively{.url = form, .slowTimeout = 700ms};
        const auto row = [](const char *rule, int status, const QByteArray &line,
                            const QSNet::Request &request) {
            const Answer answer{.status = status,
                                .headers = {{"Location", "/further"}},
                                .unannounced = true,
                                .drip = 50ms,
                                .dripBytes = line.size(),
                                .endless = line};
            QTest::newRow(rule) << answer << request;
        };
        const QByteArray provisional = "HTTP/1.1 103 \r\nLink: </style>\r\n\r\n";
        row("a body in all", 200, "x", urgent);
        row("a body in its time", 200, "x", lively);
        row("a redirect in all", 302, "x", urgent);
        row("a redirect in its time", 302, "x", lively);
        row("provisional answers in all", 0, provisional, urgent);
        row("provisional answers in their time", 0, provisional, lively);
    }
    void whatDripsIsNotWaitedFor()
    {
        QFETCH(const Answer, answer);
        QFETCH(const QSNet::Request, request);
        m_server->answer(form, {answer});
        QCOMPARE(QSNet::fetch(request).error, u"the site sends its answer too slowly"_s);
    }

    void redirectsShareOneTime()
    {
        Answer step = Answer::redirect("/form.pdf");
        step.delay = 150ms;
        m_server->answer(form, {step});
        const QSNet::Request request{.url = form, .idleTimeout = 1s, .wholeTimeout = 600ms};
        QCOMPARE(QSNet::fetch(request).error, u"the site sends its answer too slowly"_s);
        QVERIFY(m_server->requests().size() < 10);
    }

    void networkLostAndBack()
    {
        m_server->answer(form,
                         {{.body = QByteArray(100'000, 'x'), .drip = 20ms}, Answer::pdf("%PDF")});
        std::future<QSNet::Answer> answer = inBackground({form});
        QTRY_COMPARE(m_server->mostAtOnce(u"forms.example.gov"_s), 1);
        m_server->goAway();
        QCOMPARE(answer.get().error, brokenOff);
        QCOMPARE(QSNet::fetch({form}).error, u"the site could not be reached"_s);
        m_server->comeBack();
        QCOMPARE(QSNet::fetch({form}).body, "%PDF");
    }

    void stoppedDuringSilence()
    {
        m_server->answer(form, {{.silent = true}});
        std::stop_source source;
        std::future<QSNet::Answer> answer = inBackground({form}, source.get_token());
        QTRY_COMPARE(m_server->requests().size(), 1);
        source.request_stop();
        QCOMPARE(answer.get().error, u"it was stopped"_s);

        QCOMPARE(QSNet::fetch({form}, source.get_token()).error, u"it was stopped"_s);
        QCOMPARE(m_server->requests().size(), 1);
    }

    void manyThreadsGetTheirOwnAnswers()
    {
        const QString address = u"https://host%1.example.gov/"_s;
        constexpr qsizetype hosts = 8;
        for (qsizetype host = 0; host < hosts; ++host) {
            m_server->answer(address.arg(host), {Answer::html(QByteArray(host * 9999, 'x'))});
        }
        const auto askAllFrom = [&](qsizetype first) {
            bool good = true;
            for (qsizetype host = first; host < first + hosts; ++host) {
                const QSNet::Answer answer = QSNet::fetch({address.arg(host % hosts)});
                good = good && answer.body && answer.body->size() == host % hosts * 9999;
            }
            return good;
        };
        std::array<std::future<bool>, hosts> threads;
        qsizetype next = 0;
        std::ranges::generate(threads,
                              [&] { return std::async(std::launch::async, askAllFrom, next++); });
        for (std::future<bool> &thread : threads) {
            QVERIFY(thread.get());
        }
    }

    void isHandChecked_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("byHand");
        QTest::newRow("the courts") << u"https://courts.ca.gov/documents/fl100.pdf"_s << true;
        QTest::newRow("self-help") << u"https://selfhelp.courts.ca.gov/divorce"_s << true;
        QTest::newRow("any other host of theirs") << u"https://x.y.COURTS.CA.GOV/"_s << true;
        QTest::newRow("a name that only ends alike") << u"https://notcourts.ca.gov/"_s << false;
        QTest::newRow("the state's domain") << u"https://bpd.cdn.sos.ca.gov/a.pdf"_s << false;
        QTest::newRow("another state's courts") << u"https://www.courts.state.co.us/"_s << false;
        QTest::newRow("no host") << u"courts.ca.gov"_s << false;
        QTest::newRow("no address") << u"ht tp://["_s << false;
    }
    void isHandChecked()
    {
        QFETCH(const QString, url);
        QTEST(QSNet::isHandChecked(url), "byHand");
    }
};

QTEST_GUILESS_MAIN(TestQSNet)
#include "tst_qsnet.moc"
