#pragma once

#include "QSDesktop.h"
#include "QSRendered.h"

#include <QList>

#include <functional>
#include <utility>

/// Answers for the person in front of the program. Every call has to be expected: what a test did
/// not prepare for shows up in `unexpected`, and what was prepared and never asked in the queues,
/// so settled() is the test's last line.
class FakeDesktop final : public QSDesktop
{
public:
    QList<std::optional<QString>> savePaths; ///< answers to come, first to last
    QList<std::optional<QString>> openPaths; ///< the same for open panels
    QList<int> answers;                      ///< buttons to press, first to last

    std::optional<QString> printedTo = QString(); ///< what becomes of a print panel: a printer
    bool hasBrowser = true;
    bool hasPrograms = true; ///< a file manager, and a program for every file
    std::function<void()>
        whileAsking; ///< what happens while the next question or print panel stands

    QStringList suggestedNames;
    QList<Question> questions;
    QList<QUrl> browsed;
    QList<QSRendered> printed;
    QStringList printedPDFs; ///< their titles
    QStringList shownInFolder;
    QStringList openedFiles;
    QStringList unexpected;

    [[nodiscard]] bool settled() const
    {
        return unexpected.isEmpty() && savePaths.isEmpty() && openPaths.isEmpty() &&
               answers.isEmpty();
    }

    std::optional<QString> chooseSavePath(const QString &suggestedName) override
    {
        suggestedNames.append(suggestedName);
        if (savePaths.isEmpty()) {
            unexpected.append(suggestedName);
            return std::nullopt;
        }
        return savePaths.takeFirst();
    }

    std::optional<QString> chooseOpenPath(const QString &kind, const QString &) override
    {
        if (openPaths.isEmpty()) {
            unexpected.append(kind);
            return std::nullopt;
        }
        return openPaths.takeFirst();
    }

    int ask(const Question &question) override
    {
        questions.append(question);
        standOpen();
        if (answers.isEmpty()) {
            unexpected.append(question.text);
            return question.cancel;
        }
        return answers.takeFirst();
    }

    bool openInBrowser(const QUrl &url) override
    {
        browsed.append(url);
        return hasBrowser;
    }
    std::optional<QString> print(const QSRendered &rendered) override
    {
        printed.append(rendered);
        return printedTo;
    }
    std::optional<QString> printPDF(const QSPDFDocument &, const QString &title) override
    {
        standOpen();
        printedPDFs.append(title);
        return printedTo;
    }
    bool showInFolder(const QString &path) override
    {
        shownInFolder.append(path);
        return hasPrograms;
    }
    bool openFile(const QString &path) override
    {
        openedFiles.append(path);
        return hasPrograms;
    }

private:
    void standOpen()
    {
        if (whileAsking) {
            std::exchange(whileAsking, {})();
        }
    }
};
