#pragma once

#include "QSDesktop.h"
#include "QSRendered.h"

#include <QList>

/// Answers for the person in front of the program. Every call has to be expected: what a test did
/// not prepare for shows up in `unexpected`, and what was prepared and never asked in the queues,
/// so settled() is the test's last line.
class FakeDesktop final : public QSDesktop
{
public:
    QList<std::optional<QString>> savePaths; ///< answers to come, first to last
    QList<int> answers;                      ///< buttons to press, first to last

    QStringList suggestedNames;
    QList<Question> questions;
    QList<QUrl> browsed;
    QList<QSRendered> printed;
    QStringList unexpected;

    [[nodiscard]] bool settled() const
    {
        return unexpected.isEmpty() && savePaths.isEmpty() && answers.isEmpty();
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

    int ask(const Question &question) override
    {
        questions.append(question);
        if (answers.isEmpty()) {
            unexpected.append(question.text);
            return question.cancel;
        }
        return answers.takeFirst();
    }

    void openInBrowser(const QUrl &url) override { browsed.append(url); }
    void print(const QSRendered &rendered) override { printed.append(rendered); }
};
