#include "VxMemory.h"

#include "QSPrefs.h"

#include <QEvent>
#include <QScreen>
#include <QSettings>
#include <QSplitter>
#include <QWidget>

namespace {
class GeometryKeeper final : public QObject
{
public:
    GeometryKeeper(QWidget *window, const QString &key)
        : QObject(window), m_window(*window), m_key(key)
    {
        window->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        // closing hides, and so does the end of the session
        if (watched == &m_window && event->type() == QEvent::Hide && !event->spontaneous()) {
            QSPrefs::settings()->setValue(m_key, m_window.saveGeometry());
        }
        return false;
    }

private:
    QWidget &m_window;
    QString m_key;
};
} // namespace

namespace VxMemory {
bool keepGeometry(QWidget *window, const QString &key)
{
    new GeometryKeeper(window, key);
    if (!window->restoreGeometry(QSPrefs::settings()->value(key).toByteArray())) {
        return false;
    }
    // the screen may be a smaller one now
    window->resize(window->size().boundedTo(window->screen()->availableGeometry().size()));
    return true;
}

void keepSplitter(QSplitter *splitter, const QString &key)
{
    splitter->restoreState(QSPrefs::settings()->value(key).toByteArray());
    QObject::connect(splitter, &QSplitter::splitterMoved, splitter, [splitter, key] {
        QSPrefs::settings()->setValue(key, splitter->saveState());
    });
}
} // namespace VxMemory
