#include "QtDesktop.h"

#include "QSExport.h"
#include "QSInfo.h"
#include "QSPDFDocument.h"
#include "VxIcon.h"
#include "VxText.h"
#include "formwindow/FormPrint.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPageLayout>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// The file panel's filter for a name's extension, for example "PDF (*.pdf)".
QString filterFor(const QString &name)
{
    const QString extension = QFileInfo(name).suffix();
    for (const QSExport::FormatInfo &info : QSExport::formats) {
        if (info.extension == extension) {
            return u"%1 (*.%2)"_s.arg(info.label.toString().section(u" ("_s, 0, 0), extension);
        }
    }
    return {};
}

/// The path as typed, completed by the extension where it ends otherwise.
QString withExtension(const QString &path, const QString &extension)
{
    return QFileInfo(path).suffix().compare(extension, Qt::CaseInsensitive) == 0
               ? path
               : path + u'.' + extension;
}
} // namespace

QWidget *QtDesktop::window() const
{
    QWidget *active = QApplication::activeWindow();
    return active ? active : m_window;
}

std::optional<QString> QtDesktop::chooseSavePath(const QString &suggestedName)
{
    const QString folder = m_lastFolder.isEmpty()
                               ? QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)
                               : m_lastFolder;
    QFileDialog panel(window(), u"Save As"_s, folder, filterFor(suggestedName));
    panel.setAcceptMode(QFileDialog::AcceptSave);
    panel.setFileMode(QFileDialog::AnyFile);
    // The panel would ask about the name as typed, and an extension may still be missing there.
    panel.setOption(QFileDialog::DontConfirmOverwrite);
    panel.selectFile(suggestedName);
    while (panel.exec() == QDialog::Accepted && !panel.selectedFiles().isEmpty()) {
        const QString path =
            withExtension(panel.selectedFiles().constFirst(), QFileInfo(suggestedName).suffix());
        m_lastFolder = QFileInfo(path).path();
        if (mayWrite(path)) {
            return path;
        }
    }
    return std::nullopt;
}

std::optional<QString> QtDesktop::chooseOpenPath(const QString &kind, const QString &extension)
{
    const QString folder = m_lastFolder.isEmpty()
                               ? QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)
                               : m_lastFolder;
    const QString path = QFileDialog::getOpenFileName(window(), u"Open"_s, folder,
                                                      u"%1 (*.%2)"_s.arg(kind, extension));
    if (path.isEmpty()) {
        return std::nullopt;
    }
    m_lastFolder = QFileInfo(path).path();
    return path;
}

bool QtDesktop::mayWrite(const QString &path)
{
    static constexpr int replace = 1;
    return !QFileInfo::exists(path) ||
           ask({u"\"%1\" is there already. Replace it?"_s.arg(QFileInfo(path).fileName()),
                u"What is in it now is lost then."_s,
                {u"Cancel"_s, u"Replace"_s},
                0}) == replace;
}

int QtDesktop::ask(const Question &question)
{
    QMessageBox box(window());
    box.setWindowTitle(QSInfo::appName);
    const int line = box.fontMetrics().height();
    box.setIconPixmap(VxIcon::named(u"questionmark.circle.fill"_s).pixmap(2 * line, 2 * line));
    box.setTextFormat(Qt::PlainText);
    box.setText(question.text);
    box.setInformativeText(VxText::asItStands(question.detail));
    QList<QPushButton *> buttons;
    for (const QString &label : question.buttons) {
        buttons.append(box.addButton(label, QMessageBox::ActionRole));
    }
    box.setDefaultButton(buttons.constFirst());
    box.setEscapeButton(buttons.at(question.cancel));
    box.exec();
    const auto pressed = std::ranges::find(buttons, box.clickedButton());
    return pressed == buttons.end() ? question.cancel : static_cast<int>(pressed - buttons.begin());
}

bool QtDesktop::openInBrowser(const QUrl &url)
{
    return QDesktopServices::openUrl(url);
}

std::optional<QString> QtDesktop::print(const QSRendered &rendered)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageSize(QPageSize(QPageSize::Letter));
    printer.setFullPage(true);
    printer.setDocName(rendered.title);
    printer.setCreator(QSInfo::appName);
    QPrintDialog dialog(&printer, window());
    dialog.setWindowTitle(u"Print \"%1\""_s.arg(VxText::asTitle(rendered.title)));
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    QSExport::print(rendered, printer);
    return printer.outputFileName();
}

std::optional<QString> QtDesktop::printPDF(const QSPDFDocument &document, const QString &title)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageSize(
        QPageSize(document.pageSize(0), QPageSize::Point, {}, QPageSize::FuzzyOrientationMatch));
    printer.setDocName(title);
    printer.setCreator(QSInfo::appName);
    QPrintDialog dialog(&printer, window());
    dialog.setWindowTitle(u"Print \"%1\""_s.arg(VxText::asTitle(title)));
    dialog.setMinMax(1, document.pageCount());
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    const bool printed = FormPrint::inBackground(
        [&](const FormPrint::Progress &progress) { FormPrint::print(document, printer, progress); },
        title, window());
    return printed ? std::optional(printer.outputFileName()) : std::nullopt;
}

bool QtDesktop::showInFolder(const QString &path)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).path()));
}

bool QtDesktop::openFile(const QString &path)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}
