#include "VellHelpWindow.h"

#include "QSInfo.h"
#include "VellHelpViewer.h"
#include "VxMemory.h"
#include "VxWindow.h"
#include "VxZoom.h"
#include "VxZoomCommands.h"
#include "VxZoomHost.h"

#include <QApplication>
#include <QMenu>
#include <QShortcut>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr QSize contentSize(860, 600); ///< at 100 %
} // namespace

VellHelpWindow::VellHelpWindow() : m_viewer(new VellHelpViewer({}, this))
{
    setWindowTitle(QSInfo::appName + u" Help"_s);
    setAttribute(Qt::WA_QuitOnClose, false);
    setCentralWidget(new VxZoomHost(m_viewer, {32, 18}, this));
    createKeys();
    if (!VxMemory::keepGeometry(this, u"vell.help.geometry"_s)) {
        VxWindow::centre(this, contentSize * VxZoom::value(), QApplication::activeWindow());
    }
}

void VellHelpWindow::createKeys()
{
    const auto add = [this](QStringView keys, auto action) {
        connect(new QShortcut(QKeySequence(keys.toString()), this), &QShortcut::activated, this,
                action);
    };
    add(u"Ctrl+F", [this] { m_viewer->startSearch(); });
    add(u"Ctrl+W", [this] { close(); });
    add(u"Esc", [this] { escape(); });
    auto *sizes = new QMenu(this); // never opened: its keys are what counts here
    VxZoomCommands::fill(sizes);
    addActions(sizes->actions());
}

void VellHelpWindow::showTopic(const QString &id)
{
    if (!id.isEmpty()) {
        m_viewer->openTopic(id);
        m_viewer->startReading();
    } else if (!isVisible()) {
        m_viewer->openTopic(id);
        m_viewer->startSearch();
    }
    VxWindow::bringForward(this);
}

void VellHelpWindow::escape()
{
    if (!m_viewer->clearSearch()) {
        close();
    }
}
