// A check of 250 links of the shipped directory, each answer 50 ms away, against curl sending the
// same requests.
#include "AgencyServer.h"
#include "Measure.h"
#include "QSLinkChecker.h"
#include "QSNet.h"
#include "Samples.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int turns = 7;
constexpr qsizetype linkCount = 250;
constexpr std::chrono::milliseconds answerTime{50};

QSDirectory directoryOf250Links()
{
    QSDirectory directory = QSDirectory::shared();
    while (QSLinkChecker::bulkLinks(directory).size() > linkCount) {
        directory.entries.removeLast();
    }
    return directory;
}

/// A page for every address, a PDF for those of PDF entries.
void playAgencies(AgencyServer &agencies, const QList<QSDirectory::Link> &links)
{
    for (const QSDirectory::Link &link : links) {
        AgencyServer::Answer answer =
            link.expectPDF ? AgencyServer::Answer::pdf("%PDF-1.7 " + QByteArray(100'000, 'x'))
                           : AgencyServer::Answer::html("<html></html>");
        answer.delay = answerTime;
        agencies.answer(link.url, {answer});
    }
}

/// curl's configuration file for the requests that the check makes: HEAD for each link, and the
/// beginning of each PDF.
QByteArray requests(const AgencyServer &agencies, const QList<QSDirectory::Link> &links)
{
    QByteArray config;
    const auto add = [&](const QString &url, const QByteArray &how) {
        config += (config.isEmpty() ? "" : "next\n") + ("url = \"" + url.toUtf8() + "\"\n") + how +
                  "output = /dev/null\nsilent\nlocation\ncacert = \"" +
                  agencies.authorityFile().toUtf8() +
                  "\"\nconnect-to = \"::127.0.0.1:" + QByteArray::number(agencies.port()) +
                  "\"\nuser-agent = \"" + QSNet::userAgent.toUtf8() + "\"\n";
    };
    for (const QSDirectory::Link &link : links) {
        add(link.url, "head\n");
        if (link.expectPDF) {
            add(link.url, "range = \"0-2047\"\n");
        }
    }
    return config;
}

void curl(const QString &config)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(u"curl"_s, {u"--disable"_s, u"--parallel"_s, u"--parallel-max"_s, u"6"_s,
                              u"--config"_s, config});
    if (!process.waitForFinished(-1) || process.exitCode() != 0) {
        qFatal("curl: %s", process.readAllStandardError().constData());
    }
}
} // namespace

int main(int argc, char *argv[])
{
    const SampleUser user;
    const QCoreApplication application(argc, argv);
    const QSDirectory directory = directoryOf250Links();
    const QList<QSDirectory::Link> links = QSLinkChecker::bulkLinks(directory);
    AgencyServer agencies;
    playAgencies(agencies, links);
    const QString config = user.path(u"requests"_s);
    QFile file(config);
    if (!file.open(QIODevice::WriteOnly) || file.write(requests(agencies, links)) < 0) {
        qFatal("%s can't be written", qPrintable(config));
    }
    file.close();

    const auto checked = [&] {
        return Measure::milliseconds([&] {
            for (const QSLinkChecker::Check &check : QSLinkChecker::checkAll(directory)) {
                if (!check.ok) {
                    qFatal("%s: %s", qPrintable(check.url), qPrintable(check.note));
                }
            }
        });
    };
    const auto byCurl = [&] { return Measure::milliseconds([&] { curl(config); }); };
    const auto [ours, peers] = Measure::inTurns(turns, checked, byCurl);
    Measure::print({.path = "check of " + std::to_string(links.size()) + " links at 50 ms each",
                    .ours = ours.median(),
                    .peer = peers.median(),
                    .unit = "ms",
                    .peerName = "curl --parallel-max 6",
                    .wanted = 1.2});
    return 0;
}
