// Form I-912: opened to its first page, and filled, saved, flattened and read back; and how many
// values come through over all forms at hand.
#include "Measure.h"
#include "QSError.h"
#include "QSPDF.h"
#include "RealForms.h"
#include "Samples.h"

#include <QGuiApplication>

#include <sys/resource.h>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int turns = 11;
constexpr int turnsOfMany = 5; // where many forms are measured
constexpr double screen = 96;  // dots per inch at 100 %

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("%s can't be written", qPrintable(path));
    }
}

void measureOpening(const SampleUser &user)
{
    const auto opened = [] {
        return Measure::milliseconds([] {
            const auto document = QSPDFDocument::open(RealForms::read(RealForms::i912()));
            if (document->render(0, screen).image.isNull()) {
                qFatal("page 1 was not drawn");
            }
        });
    };
    const auto byHand = [&user] {
        return Measure::milliseconds([&user] {
            const QString copy = user.path(u"rewritten.pdf"_s);
            RealForms::run(u"qpdf"_s, {RealForms::i912(), copy});
            RealForms::run(u"pdftoppm"_s, {u"-r"_s, u"96"_s, u"-f"_s, u"1"_s, u"-l"_s, u"1"_s, copy,
                                           user.path(u"page"_s)});
        });
    };
    const auto [ours, peers] = Measure::inTurns(turns, opened, byHand);
    Measure::print({.path = "open Form I-912 to the first page drawn",
                    .ours = ours.median(),
                    .peer = peers.median(),
                    .unit = "ms",
                    .peerName = "qpdf and pdftoppm",
                    .wanted = 1.5});
}

void measureFilling(const SampleUser &user)
{
    int count = 0;
    QByteArray saved;
    const auto filled = [&] {
        const auto document = QSPDFDocument::open(RealForms::read(RealForms::i912()));
        return Measure::milliseconds([&] {
            count = RealForms::fillAll(*document);
            saved = document->bytes();
            if (QSPDF::flatten(*document).isEmpty()) {
                qFatal("nothing was flattened");
            }
        });
    };
    (void)filled();
    const QString copy = user.path(u"filled.pdf"_s);
    const QString flat = user.path(u"flat.pdf"_s);
    const QString values = user.path(u"values.fdf"_s);
    write(copy, saved);
    RealForms::run(u"pdftk"_s, {copy, u"generate_fdf"_s, u"output"_s, values});
    const QString form = user.path(u"form.pdf"_s);
    RealForms::run(u"qpdf"_s, {u"--decrypt"_s, RealForms::i912(), form});

    const std::string path =
        "fill " + std::to_string(count) + " fields of Form I-912, save, flatten, read back";
    const auto byQpdf = [&] {
        return Measure::milliseconds([&] {
            RealForms::run(u"qpdf"_s, {u"--flatten-annotations=all"_s, copy, flat});
        });
    };
    const auto [ours, qpdf] = Measure::inTurns(turns, filled, byQpdf);
    Measure::print({.path = path,
                    .ours = ours.median(),
                    .peer = qpdf.median(),
                    .unit = "ms",
                    .peerName = "qpdf --flatten-annotations=all",
                    .wanted = 4});
    const auto byPdftk = [&] {
        return Measure::milliseconds([&] {
            RealForms::run(u"pdftk"_s,
                           {form, u"fill_form"_s, values, u"output"_s, flat, u"flatten"_s});
        });
    };
    const auto [again, pdftk] = Measure::inTurns(turns, filled, byPdftk);
    Measure::print({.path = path,
                    .ours = again.median(),
                    .peer = pdftk.median(),
                    .unit = "ms",
                    .peerName = "pdftk fill_form flatten",
                    .wanted = 1});
}

/// The processor's time until now, of this process or of the programs that it ran, in milliseconds.
double processorTime(int whose)
{
    rusage usage{};
    getrusage(whose, &usage);
    const auto milliseconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) * 1000 + static_cast<double>(time.tv_usec) / 1000;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

/// Real forms of courts and agencies, the whole way, in processor time.
void measureWholeWay(const SampleUser &user)
{
    const QDir courts(RealForms::folder().filePath(u"courts"_s));
    const QString values = user.path(u"values.fdf"_s);
    const QString plain = user.path(u"plain.pdf"_s);
    const QString copy = user.path(u"filled.pdf"_s);
    for (const QString &name : {u"us-n-400"_s, u"us-b-107"_s, u"ca-dv-100"_s, u"ca-fl-300"_s,
                                u"ca-pld-c-001"_s, u"us-1040-2023"_s, u"us-i-193"_s}) {
        const QString form = courts.filePath(name + u".pdf"_s);
        QByteArray saved;
        const auto whole = [&] {
            const double before = processorTime(RUSAGE_SELF);
            const auto document = QSPDFDocument::open(RealForms::read(form));
            (void)RealForms::fillAll(*document);
            saved = document->bytes();
            if (document->flatCopy().pdf.isEmpty()) {
                qFatal("nothing was flattened");
            }
            return processorTime(RUSAGE_SELF) - before;
        };
        (void)whole();
        write(copy, saved);
        RealForms::run(u"pdftk"_s, {copy, u"generate_fdf"_s, u"output"_s, values});
        RealForms::run(u"qpdf"_s, {u"--decrypt"_s, form, plain});
        const auto byPdftk = [&] {
            const double before = processorTime(RUSAGE_CHILDREN);
            RealForms::run(u"pdftk"_s, {plain, u"fill_form"_s, values, u"output"_s,
                                        user.path(u"flat.pdf"_s), u"flatten"_s});
            return processorTime(RUSAGE_CHILDREN) - before;
        };
        const auto [ours, pdftk] = Measure::inTurns(turnsOfMany, whole, byPdftk);
        Measure::print({.path = "open, fill, save, flatten, read back " + name.toStdString() +
                                ", processor time",
                        .ours = ours.median(),
                        .peer = pdftk.median(),
                        .unit = "ms",
                        .peerName = "pdftk fill_form flatten",
                        .wanted = 0.5});
    }
}

/// Every value set, saved, opened again and flattened, over all files that open.
void countSurvivors()
{
    int set = 0;
    int survived = 0;
    const QFileInfoList files = RealForms::folder().entryInfoList({u"*.pdf"_s}, QDir::Files);
    for (const QFileInfo &file : files) {
        try {
            const auto document = QSPDFDocument::open(RealForms::read(file.filePath()));
            const int settable = RealForms::fillAll(*document);
            set += settable;
            const auto reopened = QSPDFDocument::open(document->bytes());
            (void)QSPDF::flatten(*reopened);
            survived += reopened->values() == document->values() ? settable : 0;
        } catch (const QSError &error) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(file.fileName()), error.what());
        }
    }
    std::printf(
        "| values that survive save, reopen and flatten, all files | %d | %d set | %.2f x | "
        "every one | %s |\n",
        survived, set, static_cast<double>(survived) / set, survived == set ? "yes" : "**no**");
}
} // namespace

int main(int argc, char *argv[])
{
    const SampleUser user;
    const QGuiApplication application(argc, argv);
    if (!QFile::exists(RealForms::i912())) {
        std::fprintf(stderr, "The real forms are not at hand in %s.\n",
                     qPrintable(RealForms::folder().path()));
        return 0;
    }
    measureOpening(user);
    measureFilling(user);
    measureWholeWay(user);
    countSurvivors();
    return 0;
}
