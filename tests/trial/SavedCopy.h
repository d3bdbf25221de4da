#pragma once

#include "Answered.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

/// The widgets of a saved copy as the file has them. It reads with qpdf and knows nothing of the
/// library that wrote them. One thread at a time.
class SavedCopy final
{
public:
    struct Widget
    {
        bool isPrinted = false; ///< flagged for print and not hidden
        bool isDrawn = false;   ///< has a drawing of its own for its state
        QString onState;        ///< of a button, as it is drawn when it is on
        QString state;          ///< of a button, as it is drawn now
        QString exportValue;    ///< of a button, where it tells it from the others of its group
        QString value;          ///< of its field, a text or a name
    };

    /// A PDF of two pages for each widget, with 30 points around its rectangle: first what its
    /// drawing shows of texts, then the same without anything that could cut them (no clips, a box
    /// grown by 20 points). Boxes, rules and backgrounds are in neither.
    struct Sheet
    {
        QByteArray pdf;
        QList<Answered> answers; ///< those that have pages, in their order
    };
    static constexpr double margin = 30;

    /// Throws std::exception.
    explicit SavedCopy(QByteArray pdf);
    ~SavedCopy();
    SavedCopy(const SavedCopy &) = delete;
    SavedCopy &operator=(const SavedCopy &) = delete;

    /// The widget of an answer, found by its name and place; nothing when there is none.
    [[nodiscard]] std::optional<Widget> widget(const Answered &answer) const;
    /// Throws std::exception.
    [[nodiscard]] Sheet sheet(const QList<Answered> &answers) const;

private:
    class Private;
    std::unique_ptr<Private> d;
};
