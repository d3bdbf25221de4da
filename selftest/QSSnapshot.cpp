#include "QSSnapshot.h"

#include "AppModel.h"
#include "DisclaimerSheet.h"
#include "MainWindow.h"
#include "NobodysDesktop.h"
#include "QSClock.h"
#include "QSDirectory.h"
#include "QSError.h"
#include "QSFile.h"
#include "QSFinder.h"
#include "QSPrefs.h"
#include "QSSetup.h"
#include "Sample.h"
#include "SetAside.h"
#include "SnapshotOptions.h"
#include "VellAbout.h"
#include "VellHelp.h"
#include "VellHelpWindow.h"
#include "VellTheme.h"
#include "VxZoom.h"
#include "formwindow/FormWindow.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QTimer>

#include <cstdio>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr QSize windowSize(1366, 720);
constexpr int longestWait = 10'000; // ms

/// Draws what the window still has to draw: pages of forms are drawn by a worker.
QPixmap settled(QWidget &widget)
{
    static constexpr int pause = 120; // ms, longer than a page takes
    static constexpr int most = 50;
    QPixmap before;
    QPixmap now = widget.grab();
    for (int i = 0; i < most && now.toImage() != before.toImage(); ++i) {
        QEventLoop waiting;
        QTimer::singleShot(pause, &waiting, &QEventLoop::quit);
        waiting.exec();
        before = std::exchange(now, widget.grab());
    }
    return now;
}

/// Writes pictures and files into one folder and keeps count of what failed.
class Album
{
public:
    explicit Album(const QDir &folder) : m_folder(folder) {}

    void add(QWidget &widget, const QString &name)
    {
        const QString path = m_folder.filePath(name + u".png"_s);
        tell(path, settled(widget).save(path));
    }

    void add(const QByteArray &bytes, const QString &name)
    {
        const QString path = m_folder.filePath(name);
        bool written = true;
        try {
            QSFile::write(path, bytes);
        } catch (const QSError &) {
            written = false;
        }
        tell(path, written);
    }

    void tell(const QString &path, bool written)
    {
        std::printf("%s%s\n", written ? "" : "could not write ", qPrintable(path));
        m_complete = m_complete && written;
    }

    [[nodiscard]] bool complete() const { return m_complete; }

private:
    QDir m_folder;
    bool m_complete = true;
};

/// The one open window of a class.
template <typename Window>
Window &windowOf()
{
    for (QWidget *each : QApplication::topLevelWidgets()) {
        auto *window = qobject_cast<Window *>(each);
        if (window && window->isVisible()) {
            return *window;
        }
    }
    throw QSError::invalid(u"A window did not open."_s);
}

void photographScreens(Album &album, AppModel &model, MainWindow &window)
{
    for (const Screens::Info &info : Screens::all) {
        model.show(info.screen);
        album.add(window, info.id.toString());
    }
    model.show(Screen::finder);
    model.setFinderTask(QSFinder::tasks.front().id);
    album.add(window, u"task"_s);
    model.show(Screen::forms);
    const auto forms = QSDirectory::shared().entriesFor(model.state(), QSCategory::smallClaims);
    if (!forms.isEmpty()) {
        model.selectEntry(forms.constFirst().id);
        album.add(window, u"entry"_s);
    }
    model.setSearch(u"small claims"_s);
    album.add(window, u"search"_s);
    model.edit(model.documents().value().constFirst());
    album.add(window, u"editor"_s);
    model.closeEditor();
}

void photographOthers(Album &album, AppModel &model, MainWindow &window)
{
    model.openSaved(model.filledPDFs().value().constFirst());
    QEventLoop opening;
    QObject::connect(&model, &AppModel::openPDFChanged, &opening, &QEventLoop::quit);
    QTimer::singleShot(longestWait, &opening, &QEventLoop::quit);
    opening.exec();
    auto &form = windowOf<FormWindow>();
    form.resize(windowSize);
    album.add(form, u"form"_s);
    model.closeForm();

    VellHelp::show();
    album.add(windowOf<VellHelpWindow>(), u"help"_s);
    windowOf<VellHelpWindow>().close();
    VellAbout::show(&window);
    album.add(windowOf<QDialog>(), u"about"_s);
    windowOf<QDialog>().close();
    DisclaimerSheet sheet(&window);
    sheet.show();
    album.add(sheet, u"disclaimer"_s);
}

void exportSample(Album &album)
{
    const std::optional<QSRendered> rendered = AppModel::render(Sample::sale());
    for (const QSExport::FormatInfo &info : QSExport::formats) {
        const QString name = u"sample."_s + info.extension.toString();
        try {
            album.add(QSExport::data(rendered.value(), info.format), name);
        } catch (const QSError &error) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(name), error.what());
            album.tell(name, false);
        }
    }
}

/// The same user, time and place for every run.
void setScene(const SnapshotOptions &options)
{
    const QDate checked = QDate::fromString(QSDirectory::shared().checked, Qt::ISODate);
    const QDateTime dayAfter(checked.addDays(1), QTime(18, 0), Qt::UTC);
    QSClock::setFixed(dayAfter);
    QApplication::setCursorFlashTime(0);
    QSPrefs::setDisclaimerAccepted(true);
    QSPrefs::setHomeState(options.state);
    VellThemes::setCurrentID(options.theme);
    VxZoom::setValue(options.zoom);
    if (const std::optional<QString> problem = QSSetup::openStore()) {
        throw QSError::invalid(*problem);
    }
    Sample::save(*QSStore::shared());
}

void photograph(const SnapshotOptions &options, Album &album)
{
    setScene(options);
    NobodysDesktop desktop;
    AppModel model(desktop);
    MainWindow window(model);
    window.resize(windowSize); // whatever the size of the screen that there is not
    window.show();
    photographScreens(album, model, window);
    photographOthers(album, model, window);
    exportSample(album);
}
} // namespace

namespace QSSnapshot {
std::optional<int> handle(const QStringList &arguments)
{
    static constexpr int misunderstood = 2;
    const qsizetype at = arguments.indexOf(flag);
    if (at < 0) {
        return std::nullopt;
    }
    try {
        const SetAside away(u"qs-snapshot"_s);
        QSSetup::configure();
        SnapshotOptions options;
        try {
            options = SnapshotOptions::parse(arguments.sliced(at + 1));
        } catch (const QSError &error) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(flag), error.what());
            return misunderstood;
        }
        QDir().mkpath(options.folder);
        Album album{QDir(options.folder)};
        photograph(options, album);
        return album.complete() ? 0 : 1;
    } catch (const QSError &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
} // namespace QSSnapshot
