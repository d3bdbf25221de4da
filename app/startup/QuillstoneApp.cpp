#include "QuillstoneApp.h"

#include "AsyncTask.h"
#include "OfficeConverter.h"
#include "QSInfo.h"
#include "QSSalvage.h"
#include "QSSetup.h"

#include <QApplication>
#include <QEvent>
#include <QSessionManager>
#include <QTimer>

#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Calls back once, when a window has been painted for the first time.
class AfterFirstPaint final : public QObject
{
public:
    AfterFirstPaint(QWidget *window, std::function<void()> callback)
        : QObject(window), m_callback(std::move(callback))
    {
        window->installEventFilter(this);
    }

    bool eventFilter(QObject *window, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            window->removeEventFilter(this);
            QTimer::singleShot(0, this, m_callback); // once the whole window is on the screen
        }
        return false;
    }

private:
    std::function<void()> m_callback;
};
} // namespace

QuillstoneApp::QuillstoneApp() = default;

QuillstoneApp::~QuillstoneApp()
{
    OfficeConverter::cancelAll(); // the process would wait for it, unseen
    m_window.reset();
    m_model.reset();
    QSStore::setShared(nullptr);
}

bool QuillstoneApp::opensAnyway()
{
    static constexpr int openAnyway = 1;
    return m_desktop.ask(
               {u"This data folder may be in use by another %1."_s.arg(QSInfo::appName),
                u"The folder is %1. It is marked as in use, but no program answers: it may have "
                "been copied from another computer, or a program may have ended while it was "
                "starting. Where two programs work on it at once, one may not be able to save."_s
                    .arg(QSInfo::dataFolder().path()),
                {u"Don't Open"_s, u"Open Anyway"_s},
                0}) == openAnyway;
}

bool QuillstoneApp::start()
{
    m_instance.emplace(QSInfo::dataFolder().path());
    if (m_instance->standing() == QSSingleInstance::Standing::second) {
        return false;
    }
    QSSetup::configure();
    if (m_instance->standing() == QSSingleInstance::Standing::unsure) {
        if (!opensAnyway()) {
            return false;
        }
        m_instance->takeOver();
    }
    const std::optional<QString> problem = QSSetup::openStore();
    m_model.emplace(m_desktop);
    m_window.emplace(*m_model);
    m_desktop.setWindow(&*m_window);
    QObject::connect(&*m_instance, &QSSingleInstance::broughtForward, &*m_window,
                     &MainWindow::bringForward);
    if (problem) {
        m_model->tellOfStart(*problem);
    }
    // What takes a moment with thousands of documents nobody has to wait for before there is a
    // window.
    new AfterFirstPaint(&*m_window, [this] {
        m_model->startDrafts();
        checkStore();
    });
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, &*m_window, [this](auto &session) {
        if (session.allowsInteraction() && !m_model->closeEverything()) {
            session.cancel();
        }
    });
    m_window->show();
    return true;
}

void QuillstoneApp::checkStore()
{
    using Problem = std::optional<QString>;
    if (!QSStore::shared()) {
        return;
    }
    // It reads all of the file, 10,000 documents in 0.2 s from memory and in 3 s from a disk: not
    // on this thread. The search index waits, for writing it to a damaged file could damage more.
    AsyncTask::run<Problem>(
        &*m_model,
        [path = QSStore::shared()->url().toLocalFile()] { return QSSalvage::problem(path); },
        [this](const AsyncTask::Outcome<Problem> &checked) {
            if (const Problem problem = checked.result.value_or(std::nullopt)) {
                qWarning("The documents database is damaged: %s", qUtf8Printable(*problem));
                const QString told = QSSetup::mendStore();
                m_model->storeReplaced();
                m_model->tellOfStart(told);
            }
            if (QSStore *store = QSStore::shared()) {
                store->fillSearchIndex();
            }
        });
}
