// The main window at work, for a user with 10,000 documents and 200 filled PDFs: changing screens,
// search results, theme and size; what it takes of the processor at rest, and of memory.
#include "AppModel.h"
#include "MainWindow.h"
#include "Measure.h"
#include "PaintWatch.h"
#include "QSDirectory.h"
#include "QSInfo.h"
#include "QSSetup.h"
#include "QtDesktop.h"
#include "Samples.h"
#include "VellTheme.h"
#include "VxZoom.h"

#include <QEventLoop>
#include <QProcess>
#include <QTimer>

#include <ctime>
#include <map>
#include <random>

#include <sys/resource.h>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int rounds = 12;
constexpr std::chrono::seconds rest{10};

/// Figures of several things by their names.
using ByName = std::map<std::string, Measure::Series>;

/// What the main thread has worked so far. Unlike the time, it stands still while other programs
/// have the processor.
double mainThreadMilliseconds()
{
    timespec now = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

template <typename Call>
double mainThreadMilliseconds(Call call)
{
    const double before = mainThreadMilliseconds();
    call();
    return mainThreadMilliseconds() - before;
}

void printMilliseconds(const std::string &path, double ours, double limit)
{
    Measure::print({.path = path, .ours = ours, .peer = limit, .unit = "ms", .peerName = "limit"});
}

/// The median and the 95th percentile of all, and the median of the slowest by its name.
void print(const std::string &path, const ByName &figures, double limit)
{
    Measure::Series all;
    auto slowest = figures.begin();
    for (auto each = figures.begin(); each != figures.end(); ++each) {
        all.add(each->second);
        slowest = each->second.median() > slowest->second.median() ? each : slowest;
    }
    printMilliseconds(path + ", median", all.median(), limit);
    printMilliseconds(path + ", 95th percentile", all.percentile(95), limit);
    printMilliseconds(path + ", median of the slowest: " + slowest->first, slowest->second.median(),
                      limit);
}

void spin(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

/// A user whose every list is long.
void createData()
{
    constexpr int documents = 10'000;
    constexpr int filled = 200;
    QSStore store(QSInfo::databaseURL());
    Samples().fill(store, documents);
    const QList<QSEntry> &entries = QSDirectory::shared().entries;
    for (int i = 0; i < filled; ++i) {
        const QSEntry &entry = entries.at(i % entries.size());
        (void)store.saveFilledPDF(entry.id, entry.title, "%PDF-1.4\n"_ba);
    }
}

/// What a program beside this one prints of the memory it has in use.
double megabytesOf(const QString &name, const QStringList &arguments = {})
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationDirPath() + u'/' + name, arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0) {
        qFatal("%s failed", qPrintable(name));
    }
    return process.readAllStandardOutput().trimmed().toDouble() / 1024;
}

void measureMemory()
{
    const QString standardOutput = QString::number(1);
    const double empty = megabytesOf(u"bench_empty"_s, {standardOutput});
    Measure::print(
        {.path = "memory with every screen, the editor and the help visited",
         .ours = megabytesOf(u"bench_visited"_s),
         .peer = 130,
         .unit = "MB",
         .peerName = u"limit; %1 MB, empty themed window"_s.arg(empty, 0, 'f', 1).toStdString()});
}

/// The program's window, and what a user does to it.
class Bench final
{
public:
    explicit Bench(PaintWatch &application) : m_application(application)
    {
        m_desktop.setWindow(&m_window);
        m_window.show();
        m_model.startDrafts();
        spin(std::chrono::seconds(1));
    }

    void measureScreens();
    void measureSearch();
    void measureLook();
    void measureRest();

private:
    /// What the main thread works from a call until all that it changes is painted, in
    /// milliseconds.
    template <typename Call>
    double untilPainted(Call call);
    void watchPainting();
    /// Shows the document that was changed last in the editor.
    void edit() { m_model.edit(m_document); }

    PaintWatch &m_application;
    QtDesktop m_desktop;
    AppModel m_model{m_desktop};
    MainWindow m_window{m_model};
    QSDocument m_document = QSStore::shared()->documents().constFirst();
    std::minstd_rand m_random;
    bool m_painted = false;
    double m_paintedAt = 0;
};

void Bench::watchPainting()
{
    m_application.whenPainted(nullptr, [this] {
        m_painted = true;
        m_paintedAt = mainThreadMilliseconds();
        watchPainting();
    });
}

template <typename Call>
double Bench::untilPainted(Call call)
{
    m_painted = false;
    watchPainting();
    const double begin = mainThreadMilliseconds();
    call();
    while (!m_painted) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    while (m_painted) { // what is laid out anew once its size is known is painted once more
        m_painted = false;
        QCoreApplication::processEvents();
    }
    m_application.whenPainted(nullptr, {});
    return m_paintedAt - begin;
}

void Bench::measureScreens()
{
    ByName first;
    ByName again;
    std::vector<Screens::Info> order(Screens::all.begin(), Screens::all.end());
    std::ranges::rotate(order, order.begin() + 1); // the first one stands there already
    for (int round = 0; round <= rounds; ++round) {
        for (const Screens::Info &each : order) {
            if (each.screen != m_model.screen()) {
                const double taken = untilPainted([&] { m_model.show(each.screen); });
                (round == 0 ? first : again)[each.title.toString().toStdString()].add(taken);
            }
        }
        std::ranges::shuffle(order, m_random);
    }
    print("first visit of a screen", first, 50);
    print("change to a screen visited before", again, 50);
}

void Bench::measureSearch()
{
    Measure::Series whole;
    Measure::Series query;
    Measure::Series rows;
    for (int round = 0; round < 2; ++round) { // the first makes the rows
        whole = query = rows = {};
        for (const QString &text : Samples::searches()) {
            for (qsizetype letters = 1; letters <= text.size(); ++letters) {
                whole.add(untilPainted([&] { m_model.setSearch(text.first(letters)); }));
                query.add(mainThreadMilliseconds([&] { (void)m_model.hits(); }));
                rows.add(whole.last() - query.last());
            }
            m_model.setSearch({});
            spin(std::chrono::milliseconds(50));
        }
    }
    const std::string path = "letter in the search field to painted results, ";
    printMilliseconds(path + "median", whole.median(), 16);
    printMilliseconds(path + "95th percentile", whole.percentile(95), 16);
    printMilliseconds("of these the query, 95th percentile", query.percentile(95), 16);
    printMilliseconds("of these the rows, 95th percentile", rows.percentile(95), 16);
}

void Bench::measureLook()
{
    m_model.openPractice();
    ByName themes;
    ByName zooms;
    const auto measure = [&](const std::string &page, const auto &showPage) {
        const auto add = [&](ByName &series, const auto &change) {
            for (const Screens::Info &each : Screens::all) { // a change drops what is not seen
                m_model.show(each.screen);
                QCoreApplication::processEvents();
            }
            showPage();
            spin(std::chrono::milliseconds(50));
            series[page].add(untilPainted(change));
        };
        for (const double zoom : {1.5, 1.0}) {
            add(zooms, [zoom] { VxZoom::setValue(zoom); });
        }
        for (const VellTheme &theme : VellThemes::all()) {
            if (theme.id != VellThemes::current().id) {
                add(themes, [&theme] { VellThemes::setCurrentID(theme.id); });
            }
        }
    };
    measure("the editor", [this] { edit(); });
    for (const Screens::Info &each : Screens::all) {
        measure(each.title.toString().toStdString(), [&] { m_model.show(each.screen); });
    }
    print("change of the theme, all screens, the editor and a form open", themes, 150);
    print("change of the size from 100 % to 150 % and back, the same", zooms, 150);
}

void Bench::measureRest()
{
    edit();
    m_window.setFocus(); // a text cursor blinks for good reason
    spin(std::chrono::seconds(4));
    const auto processor = [] { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; };
    const auto wakeUps = [] {
        rusage usage = {};
        ::getrusage(RUSAGE_SELF, &usage);
        return usage.ru_nvcsw;
    };
    const double before = processor();
    const long wakeUpsBefore = wakeUps();
    spin(rest);
    const double taken = processor() - before;
    const double percent = 100 * taken / std::chrono::duration<double>(rest).count();
    std::printf("| processor at rest, everything shown | %.3f %% of a core, %ld wake-ups in 10 s "
                "| none, limit | | below 0.1 %% | %s |\n",
                percent, wakeUps() - wakeUpsBefore, percent < 0.1 ? "yes" : "**no**");
}
} // namespace

int main(int argc, char *argv[])
{
    const SampleUser user;
    PaintWatch application(argc, argv);
    createData();
    measureMemory();
    QSSetup::configure();
    if (const auto problem = QSSetup::openStore()) {
        qFatal("%s", qPrintable(*problem));
    }
    QSStore::shared()->fillSearchIndex();
    {
        Bench bench(application);
        bench.measureScreens();
        bench.measureSearch();
        bench.measureLook();
        bench.measureRest();
    }
    QSStore::setShared(nullptr);
    return 0;
}
