#include "FormTrial.h"

#include "Programs.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Understands what the child says; see TrialRun.
class ChildTalk final
{
public:
    explicit ChildTalk(FormReport &report) : m_report(report) {}

    void hear(const QByteArray &said)
    {
        for (const QByteArray &line : said.split('\n')) {
            const qsizetype tab = line.indexOf('\t');
            if (tab >= 0) {
                hear(line.first(tab), QString::fromUtf8(line.mid(tab + 1)));
            }
        }
    }
    [[nodiscard]] QString stage() const { return m_stage; }

private:
    void hear(const QByteArray &key, const QString &text)
    {
        if (key == "stage") {
            m_stage = text;
        } else if (key == "pages") {
            m_report.pages = text.toInt();
            m_report.opened = true;
        } else if (key == "fields") {
            m_report.fields = text.toInt();
        } else if (key == "refused") {
            m_report.refusal = text;
        } else if (key == "untouched") {
            m_report.untouched = text;
        } else if (key == "filled") {
            m_report.filled.append(text);
        } else if (key == "lost") {
            m_report.verdict.lost.append(text);
        }
    }

    FormReport &m_report;
    QString m_stage = u"start"_s;
};

void fill(FormReport &report, const QString &pdf, const QString &folder)
{
    constexpr int seconds = 240;
    const Programs::Output child =
        Programs::run(QCoreApplication::applicationFilePath(),
                      {QString::fromLatin1(FormTrial::childOption), pdf, folder}, seconds);
    ChildTalk talk(report);
    talk.hear(child.text);
    if (!child.isGood() || talk.stage() != u"end") {
        report.verdict.lost.append(u"the process ended during \"%1\" (%2)"_s.arg(
            talk.stage(), child.ended ? u"status %1"_s.arg(child.status)
                                      : u"a crash, or a limit of time or memory"_s));
    }
}
} // namespace

FormReport FormTrial::of(const QString &pdf, const QString &folder)
{
    QDir().mkpath(folder);
    FormReport report;
    report.name = QFileInfo(pdf).completeBaseName();
    fill(report, pdf, folder);
    if (report.opened) {
        const Judges judges(pdf, folder + u"/untouched.pdf"_s);
        report.verdict.add(judges.untouched());
        for (const QString &pass : {u"fitting"_s, u"scripts"_s, u"too-long"_s}) {
            report.verdict.add(judges.pass(folder + u'/' + pass, pass));
        }
    }
    QFile file(folder + u"/findings.txt"_s);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(report.everything().toUtf8());
    }
    return report;
}
