// Tries the program on every PDF form of a folder; docs/forms.md says how it judges.

#include "FormTrial.h"
#include "Programs.h"
#include "TrialRun.h"

#include <QDir>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <future>
#include <thread>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int wrongUsage = 2;

void print(const QString &line)
{
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

int refuse(const QString &why)
{
    std::fprintf(stderr, "%s\n", why.toUtf8().constData());
    return wrongUsage;
}

/// Two at a time; their lines come in the order of their names.
Totals tryAll(const QFileInfoList &forms, const QDir &folder)
{
    std::vector<std::promise<FormReport>> reports(static_cast<size_t>(forms.size()));
    std::atomic<size_t> next = 0;
    const auto work = [&] {
        for (size_t i = next++; i < reports.size(); i = next++) {
            const QFileInfo &form = forms.at(static_cast<qsizetype>(i));
            reports.at(i).set_value(
                FormTrial::of(form.absoluteFilePath(), folder.filePath(form.completeBaseName())));
        }
    };
    const std::jthread first(work);
    const std::jthread second(work);
    Totals totals;
    for (auto &report : reports) {
        const FormReport form = report.get_future().get();
        print(form.line());
        totals.add(form);
    }
    return totals;
}

int tryFolder(const QString &folder, const QString &keep)
{
    const QFileInfoList forms = QDir(folder).entryInfoList({u"*.pdf"_s}, QDir::Files, QDir::Name);
    if (forms.isEmpty()) {
        return refuse(u"There is no PDF in %1"_s.arg(folder));
    }
    if (const QStringList missing = Programs::missing(); !missing.isEmpty()) {
        return refuse(u"These programs are missing: %1"_s.arg(missing.join(u", "_s)));
    }
    const QTemporaryDir scratch;
    if (!scratch.isValid() || (!keep.isEmpty() && !QDir().mkpath(keep))) {
        return refuse(u"There is no place for the trial's files"_s);
    }
    const Totals totals = tryAll(forms, QDir(keep.isEmpty() ? scratch.path() : keep));
    print(totals.line());
    return totals.areGood() ? 0 : 1;
}
} // namespace

int main(int argc, char *argv[])
{
    const bool isChild = argc == 4 && std::strcmp(argv[1], FormTrial::childOption) == 0;
    if (isChild) {
        TrialRun::limitThisProcess();
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (isChild) {
        return TrialRun::run(arguments.at(1), arguments.at(2));
    }
    const bool keeps = arguments.size() == 3 && arguments.at(1) == u"--keep";
    if (arguments.size() != 1 && !keeps) {
        return refuse(u"usage: forms_trial FOLDER [--keep FOLDER]"_s);
    }
    return tryFolder(arguments.at(0), keeps ? arguments.at(2) : QString());
}
