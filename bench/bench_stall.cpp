// How long the main thread is away from its events while Form I-912 is saved and printed.
#include "AppModel.h"
#include "FormPrint.h"
#include "MainWindow.h"
#include "Measure.h"
#include "QSDesktop.h"
#include "QSInfo.h"
#include "QSSetup.h"
#include "RealForms.h"
#include "Samples.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace std::string_literals;

namespace {
/// Beats as often as the events allow, and keeps the longest pause between two beats.
class Heart final
{
public:
    Heart()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            m_longest = qMax(m_longest, static_cast<double>(m_pause.nsecsElapsed()) / 1e6);
            m_pause.start();
        });
        m_pause.start();
        m_timer.start(1ms);
    }
    [[nodiscard]] double longest() const { return m_longest; }

private:
    QTimer m_timer;
    QElapsedTimer m_pause;
    double m_longest = 0;
};

/// A person who prints all pages, whatever is asked, on a printer of 600 dots per inch.
class Printing final : public QSDesktop
{
public:
    std::optional<QString> chooseSavePath(const QString &) override { return std::nullopt; }
    std::optional<QString> chooseOpenPath(const QString &, const QString &) override
    {
        return std::nullopt;
    }
    int ask(const Question &) override { return 1; }
    bool openInBrowser(const QUrl &) override { return false; }
    std::optional<QString> print(const QSRendered &) override { return std::nullopt; }
    std::optional<QString> printPDF(const QSPDFDocument &document, const QString &title) override
    {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(m_folder.filePath(u"printed.pdf"_s));
        printer.setResolution(600);
        printed = FormPrint::inBackground(
            [&](const FormPrint::Progress &progress) {
                FormPrint::draw(document, printer, progress);
            },
            title, nullptr);
        return printer.outputFileName();
    }
    bool showInFolder(const QString &) override { return false; }
    bool openFile(const QString &) override { return false; }

    bool printed = false;

private:
    QTemporaryDir m_folder;
};

void waitUntil(const std::function<bool()> &done)
{
    while (!done()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

double stallOf(const std::function<void()> &action)
{
    const Heart heart;
    waitUntil([&] { return heart.longest() > 0; });
    action();
    return heart.longest();
}

void print(const char *what, const Measure::Series &stalls)
{
    Measure::print({.path = "longest stall of the main thread while Form I-912 is "s + what,
                    .ours = stalls.largest(),
                    .peer = 50,
                    .unit = "ms",
                    .peerName = "limit"});
}
} // namespace

int main(int argc, char *argv[])
{
    constexpr int rounds = 5;
    const SampleUser user;
    const QApplication application(argc, argv);
    if (!QFile::exists(RealForms::i912())) {
        std::fprintf(stderr, "The real forms are not at hand in %s.\n",
                     qPrintable(RealForms::folder().path()));
        return 0;
    }
    QSSetup::configure();
    QSStore::setShared(std::make_unique<QSStore>(QSInfo::databaseURL()));
    const QSFilledPDF copy = QSStore::shared()->saveFilledPDF(u"us-i-912"_s, u"I-912"_s,
                                                              RealForms::read(RealForms::i912()));
    Printing desktop;
    AppModel model(desktop);
    MainWindow window(model);
    window.show();
    model.openSaved(copy);
    waitUntil([&] { return model.openPDF().has_value(); });
    (void)RealForms::fillAll(model.openPDF()->document());
    Measure::Series saving;
    Measure::Series printing;
    for (int round = 0; round < rounds; ++round) {
        saving.add(stallOf([&] { (void)model.saveForm(); }));
        printing.add(stallOf([&] {
            desktop.printed = false;
            model.printForm();
            waitUntil([&] { return desktop.printed; });
        }));
    }
    print("saved", saving);
    print("printed", printing);
    (void)model.closeEverything();
    QSStore::setShared(nullptr);
    return 0;
}
