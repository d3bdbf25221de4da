#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

class QSPDFDocument;
struct QSRendered;

/// What the model needs of a person or a desktop: panels, questions, the browser, a printer. The
/// interface gives the real one; tests answer with their own. Called on the main thread; each call
/// returns when the person has answered.
class QSDesktop
{
public:
    /// A question with its buttons. The first button is the default; cancel is what closing the
    /// question means.
    struct Question
    {
        QString text;
        QString detail; ///< may be empty
        QStringList buttons;
        int cancel = 0; ///< position of the button that changes nothing
    };

    QSDesktop() = default;
    virtual ~QSDesktop() = default;
    QSDesktop(const QSDesktop &) = delete;
    QSDesktop &operator=(const QSDesktop &) = delete;

    /// The path chosen in a save panel, with the suggested name's extension; absent when cancelled.
    /// A file that is there already is only named once the person has agreed to replace it.
    [[nodiscard]] virtual std::optional<QString> chooseSavePath(const QString &suggestedName) = 0;
    /// The path of the one file chosen in an open panel that shows files of this extension, called
    /// so; absent when cancelled.
    [[nodiscard]] virtual std::optional<QString> chooseOpenPath(const QString &kind,
                                                                const QString &extension) = 0;
    /// Position of the button chosen.
    [[nodiscard]] virtual int ask(const Question &question) = 0;
    /// url: an https one. False when there is no browser to open it.
    [[nodiscard]] virtual bool openInBrowser(const QUrl &url) = 0;
    /// Shows the print panel and prints. Where it went: the path of a file, empty for a printer,
    /// absent when it was cancelled. Throws QSError when printing fails.
    [[nodiscard]] virtual std::optional<QString> print(const QSRendered &rendered) = 0;
    /// The same for a PDF, its fields printed as they are shown.
    [[nodiscard]] virtual std::optional<QString> printPDF(const QSPDFDocument &document,
                                                          const QString &title) = 0;
    /// Shows a file in the file manager; false when there is none.
    [[nodiscard]] virtual bool showInFolder(const QString &path) = 0;
    /// Opens a file with the program that the desktop has for it; false when there is none.
    [[nodiscard]] virtual bool openFile(const QString &path) = 0;
};
