#include "MainMenu.h"

#include "AppModel.h"
#include "QSTemplates.h"
#include "VellHelpCommands.h"
#include "VellThemeCommands.h"
#include "VxIcon.h"
#include "VxText.h"
#include "VxZoomCommands.h"
#include "screens/ExportMenu.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::Literals::StringLiterals;

namespace {
/// The same key on every platform: the platforms' own lists lack some of these commands.
QKeySequence key(QStringView keys)
{
    return QKeySequence(keys.toString());
}
} // namespace

MainMenu::MainMenu(AppModel &model, QMainWindow *window)
    : QObject(window), m_model(model), m_window(window)
{
    createFileMenu();
    createViewMenu();
    createThemeMenu();
    createGoMenu();
    createHelpMenu();
    connect(&m_model, &AppModel::editingChanged, this, &MainMenu::enableCommands);
    connect(&m_model, &AppModel::checkingChanged, this, &MainMenu::enableCommands);
    enableCommands();
}

void MainMenu::createFileMenu()
{
    QMenu *menu = m_window->menuBar()->addMenu(u"&File"_s);
    QMenu *fresh = menu->addMenu(u"&New Document from Template"_s);
    for (const QSTemplate &each : QSTemplates::all()) {
        connect(fresh->addAction(VxText::asCaption(each.title)), &QAction::triggered, this,
                [this, id = each.id] {
                    if (const QSTemplate *source = QSTemplates::templateById(id)) {
                        m_model.newDocument(*source);
                    }
                });
    }
    menu->addAction(u"Open the Practice &Form"_s, &m_model, &AppModel::openPractice);
    menu->addSeparator();
    QAction *save =
        menu->addAction(u"&Save"_s, key(u"Ctrl+S"), &m_model, [this] { m_model.saveEdited(); });
    QMenu *formats = menu->addMenu(u"&Export"_s);
    ExportMenu::fill(formats, this,
                     [this](QSExport::Format format) { m_model.exportEdited(format); });
    QAction *print = menu->addAction(u"&Print\u2026"_s, key(u"Ctrl+P"), &m_model,
                                     [this] { m_model.printEdited(); });
    QAction *close = menu->addAction(u"&Close Document"_s, key(u"Ctrl+W"), &m_model,
                                     [this] { m_model.closeEditor(); });
    m_documentCommands = {save, formats->menuAction(), print, close};
    menu->addSeparator();
    menu->addAction(u"&Back Up Now\u2026"_s, key(u"Ctrl+Shift+B"), &m_model, &AppModel::backupNow);
    menu->addAction(u"&Restore from Backup\u2026"_s, &m_model, &AppModel::restore);
    menu->addSeparator();
    m_checkLinks =
        menu->addAction(u"Check All Official &Links"_s, &m_model, &AppModel::checkAllLinks);
    menu->addSeparator();
    menu->addAction(u"&Quit"_s, key(u"Ctrl+Q"), m_window, [this] { m_window->close(); });
}

void MainMenu::createViewMenu()
{
    VxZoomCommands::fill(m_window->menuBar()->addMenu(u"&View"_s));
}

void MainMenu::createThemeMenu()
{
    VellThemeCommands::fill(m_window->menuBar()->addMenu(u"&Theme"_s));
}

void MainMenu::createGoMenu()
{
    QMenu *menu = m_window->menuBar()->addMenu(u"&Go"_s);
    for (const Screens::Info &info : Screens::all) {
        const QKeySequence place(u"Ctrl+%1"_s.arg(static_cast<int>(info.screen) + 1));
        menu->addAction(VxIcon::named(info.symbol.toString()),
                        VxText::asCaption(info.title.toString()), place, &m_model,
                        [this, screen = info.screen] {
                            if (m_model.show(screen)) {
                                Q_EMIT screenRequested();
                            }
                        });
    }
    menu->addSeparator();
    menu->addAction(u"&Search"_s, key(u"Ctrl+F"), this, [this] { Q_EMIT findRequested(); });
}

void MainMenu::createHelpMenu()
{
    QMenu *menu = m_window->menuBar()->addMenu(u"&Help"_s);
    VellHelpCommands::fill(menu);
    menu->addSeparator();
    menu->addAction(u"Show the &Disclaimer"_s, &m_model,
                    [this] { m_model.setShowDisclaimer(true); });
}

void MainMenu::enableCommands()
{
    for (QAction *command : m_documentCommands) {
        command->setEnabled(m_model.editing().has_value());
    }
    m_checkLinks->setEnabled(!m_model.checking());
}
