#include "FormCommands.h"

#include "AppModel.h"
#include "FormEdits.h"
#include "FormView.h"
#include "VellHelpCommands.h"
#include "VxIcon.h"
#include "VxZoomCommands.h"
#include "screens/ExportMenu.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::Literals::StringLiterals;

namespace {
QKeySequence key(QStringView keys)
{
    return QKeySequence(keys.toString());
}
} // namespace

FormCommands::FormCommands(AppModel &model, FormEdits &edits, FormView &view, QWidget &sidebar,
                           QMainWindow *window)
    : QObject(window), m_model(model), m_window(window)
{
    createFileMenu();
    createEditMenu(edits);
    createViewMenu(view, sidebar);
    createGoMenu(view);
    VellHelpCommands::fill(m_window->menuBar()->addMenu(u"&Help"_s));
}

void FormCommands::createFileMenu()
{
    QMenu *menu = m_window->menuBar()->addMenu(u"&File"_s);
    m_save = menu->addAction(VxIcon::named(u"tray.and.arrow.down.fill"_s), {}, key(u"Ctrl+S"),
                             &m_model, [this] { m_model.saveForm(); });
    ExportMenu::fillForForm(menu->addMenu(u"&Export"_s), &m_model,
                            [this](AppModel::FormExport how) { m_model.exportForm(how); });
    menu->addAction(VxIcon::named(u"printer.fill"_s), u"&Print\u2026"_s, key(u"Ctrl+P"), &m_model,
                    [this] { m_model.printForm(); });
    menu->addSeparator();
    menu->addAction(u"&Close"_s, key(u"Ctrl+W"), m_window, [this] { m_window->close(); });
}

void FormCommands::createEditMenu(FormEdits &edits)
{
    QMenu *menu = m_window->menuBar()->addMenu(u"&Edit"_s);
    QUndoStack *stack = &edits.stack();
    m_undo = menu->addAction(VxIcon::named(u"arrow.uturn.backward"_s), u"&Undo"_s, key(u"Ctrl+Z"),
                             stack, &QUndoStack::undo);
    m_redo = menu->addAction(VxIcon::named(u"arrow.uturn.forward"_s), u"&Redo"_s,
                             key(u"Ctrl+Shift+Z"), stack, &QUndoStack::redo);
    for (const auto &[action, changed, able] :
         {std::tuple(m_undo, &QUndoStack::canUndoChanged, stack->canUndo()),
          std::tuple(m_redo, &QUndoStack::canRedoChanged, stack->canRedo())}) {
        action->setEnabled(able);
        connect(stack, changed, action, &QAction::setEnabled);
    }
}

void FormCommands::createViewMenu(FormView &view, QWidget &sidebar)
{
    QMenu *menu = m_window->menuBar()->addMenu(u"&View"_s);
    m_zoomIn = menu->addAction(VxIcon::named(u"plus.magnifyingglass"_s), u"Zoom &In"_s, &view,
                               &FormView::zoomIn);
    m_zoomIn->setShortcuts({key(u"Ctrl++"), key(u"Ctrl+=")});
    m_zoomOut = menu->addAction(VxIcon::named(u"minus.magnifyingglass"_s), u"Zoom &Out"_s,
                                key(u"Ctrl+-"), &view, &FormView::zoomOut);
    menu->addAction(u"&Actual Size"_s, key(u"Ctrl+0"), &view, &FormView::zoomToPaper);
    m_fitWidth = menu->addAction(VxIcon::named(u"arrow.left.and.right"_s), u"Fit &Width"_s, &view,
                                 &FormView::fitWidth);
    menu->addSeparator();
    m_showPages = menu->addAction(VxIcon::named(u"sidebar.left"_s), u"Show &Pages"_s);
    m_showPages->setCheckable(true);
    m_showPages->setChecked(true);
    connect(m_showPages, &QAction::toggled, &sidebar, &QWidget::setVisible);
    menu->addSeparator();
    VxZoomCommands::fillLevels(menu->addMenu(u"Interface Si&ze"_s));
}

void FormCommands::createGoMenu(FormView &view)
{
    QMenu *menu = m_window->menuBar()->addMenu(u"&Go"_s);
    menu->addAction(u"&Next Page"_s, key(u"Ctrl+PgDown"), &view, &FormView::goToNextPage);
    menu->addAction(u"&Previous Page"_s, key(u"Ctrl+PgUp"), &view, &FormView::goToPreviousPage);
}

void FormCommands::setSaveText(const QString &text)
{
    m_save->setText(text);
}
