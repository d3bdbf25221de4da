#include "Groups.h"
#include "QSInfo.h"
#include "QSSelfTest.h"
#include "QSTestRun.h"

#include <QCoreApplication>
#include <QProcess>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// What another run of this program prints, having said to developers why it did not end well.
QStringList linesOf(const QString &flag, const QString &path)
{
    constexpr int timeLimit = 60'000;
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {flag, path});
    if (!child.waitForFinished(timeLimit)) {
        qWarning("The second process did not end: %s", qPrintable(child.errorString()));
        return {};
    }
    const QString output = QString::fromUtf8(child.readAllStandardOutput());
    if (child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0) {
        qWarning("The second process ended with status %d: %s", child.exitCode(),
                 qPrintable(output));
    }
    return output.split(u'\n');
}

/// The first line that begins so; empty when there is none.
QString line(const QStringList &lines, const QString &beginning)
{
    const auto begins = [&](const QString &each) { return each.startsWith(beginning); };
    const auto found = std::ranges::find_if(lines, begins);
    return found == lines.end() ? QString() : *found;
}
} // namespace

void Groups::relaunch(QSTestRun &run)
{
    QSTestRun::begin(
        u"Documents, profile and filled PDFs survive a relaunch (two separate processes)"_s);
    const QString path = QSInfo::dataFolder().filePath(u"relaunch/Quillstone.sqlite"_s);
    const QString written = line(linesOf(QSSelfTest::writeFlag, path), u"DIGEST|"_s);
    const QStringList lines = linesOf(QSSelfTest::readFlag, path);
    const QString read = line(lines, u"DIGEST|"_s);
    const QString digest = read.section(u'|', 1);
    run.check(!digest.isEmpty() && read == written,
              u"second process reads exactly what the first wrote (%1)"_s.arg(
                  digest.isEmpty() ? u"none"_s : digest));
    run.check(line(lines, u"DOCS|"_s) == u"DOCS|1|PDFS|1|NAME|Jordan Q. Sample",
              u"1 document, 1 filled PDF and the profile are there after relaunch"_s);
}
