#pragma once

#include "FormFault.h"
#include "FormField.h"
#include "PageDrawing.h"

#include <QByteArray>
#include <QList>
#include <QRect>
#include <QSizeF>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

/// A PDF that is open: its pages, its form's widgets and what is typed into them.
///
/// The way of the bytes: a copy is normalised first (no encryption that the empty password opens,
/// no XFA answers beside the fields, no usage rights, default resources where they are missing),
/// then shown and filled, and what is saved is put right again so that every other program finds
/// the same appearances. The bytes it was opened from are never changed.
///
/// Any thread may call any function. What reads or changes a value waits neither for a drawing nor
/// for a file that is made on another thread; a drawing of the page that it changes makes way.
class QSPDFDocument final
{
public:
    /// Opens bytes from a site or a file. Throws QSError::invalid with a sentence for people when
    /// they are no PDF, damaged beyond repair, need a password, or hold nothing but the page that
    /// asks for another kind of program (XFA); when their form has far more
    /// fields or text than real ones; and soon after the opening is told to stop. A file that is
    /// too damaged to be written anew, but not to be shown, has no fields here.
    [[nodiscard]] static std::shared_ptr<QSPDFDocument> open(const QByteArray &bytes,
                                                             const std::stop_token &stop = {});
    /// True when the bytes are a PDF, whatever can be done with it: a file that needs a password is
    /// one too.
    [[nodiscard]] static bool isPDF(const QByteArray &bytes);
    /// True when a PDF needs no repair to be read. One that was cut off does, and so do others.
    [[nodiscard]] static bool isSound(const QByteArray &bytes);

    ~QSPDFDocument();
    QSPDFDocument(const QSPDFDocument &) = delete;
    QSPDFDocument &operator=(const QSPDFDocument &) = delete;

    [[nodiscard]] int pageCount() const;
    /// In points, as the page is shown (its rotation applied). US Letter for a page that isn't
    /// there.
    [[nodiscard]] QSizeF pageSize(int page) const;
    /// What the agency calls the page, its number from 1 when it has no name of its own.
    [[nodiscard]] QString pageLabel(int page) const;

    /// Every widget in page order and, within a page, in the order of the page's annotations.
    [[nodiscard]] const QList<FormField> &fields() const;
    /// Ids of the widgets that can be reached by keyboard (shown and settable), in the order the
    /// page asks for.
    [[nodiscard]] const QList<int> &tabOrder() const;
    [[nodiscard]] FormValue value(int id) const;
    /// All values, by id.
    [[nodiscard]] QList<FormValue> values() const;
    /// Sets a widget's value, and with it those of the widgets that have to follow: the other
    /// buttons of a radio group, check boxes and texts that share its name, which are one answer:
    /// they hold the same whatever limits they have. Returns the ids of all widgets that may look
    /// different now, this one first. A text longer than the field's limit, or than any that is
    /// opened again, is cut and a tab becomes a space; does nothing to push buttons and signatures.
    /// Works on read-only widgets too: asking isSettable() is the caller's part.
    QList<int> setValue(int id, const FormValue &value);

    /// Draws a page with what is typed into it, on white, at so many dots per inch. clip: only that
    /// part of the page, in dots; everything when it is null. Makes way for a call of setValue()
    /// that changes this page, and when cancelled() returns true. Fails for a page that isn't
    /// there, and for more than 64 million dots, or a page of more than 32,767 dots along a side,
    /// which would take all memory. cancelled() is called often and from this thread; it must not
    /// call the document.
    [[nodiscard]] PageDrawing render(int page, double dotsPerInch, const QRect &clip = {},
                                     const std::function<bool()> &cancelled = {}) const;
    /// What is printed on the page inside a rectangle in points, without what is typed into it; all
    /// of it when the rectangle is null.
    [[nodiscard]] QString text(int page, const QRectF &rect = {}) const;

    /// The document as a file, values and fields in it, to be opened again here or anywhere else.
    /// Throws QSError::invalid when it can't be made.
    [[nodiscard]] QByteArray bytes() const;

    /// What of a widget's answer would not be on paper, as far as its drawing tells: it is cut, or
    /// has letters that no font has. Values that are drawn as the file has them are the agency's.
    [[nodiscard]] std::optional<FormFault> fault(int id) const;

    /// A copy whose fields are part of its pages.
    struct FlatCopy
    {
        QByteArray pdf;
        QList<FormFault> faults; ///< by page and widget: answers that it doesn't show whole
    };
    /// The copy, read back: whatever can't be read in its field or seen on its page is among the
    /// faults. An answer that is cut ends in an ellipsis. Throws QSError::invalid when none can be
    /// made.
    [[nodiscard]] FlatCopy flatCopy() const;
    /// The copy where it shows every answer whole; else throws QSError::invalid, which names them.
    [[nodiscard]] QByteArray flattened() const;

private:
    class Private;
    [[nodiscard]] static std::unique_ptr<Private> opened(const QByteArray &bytes,
                                                         const std::stop_token &stop);
    explicit QSPDFDocument(std::unique_ptr<Private> d);

    std::unique_ptr<Private> d;
};
