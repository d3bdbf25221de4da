#pragma once

#include "Widget.h"

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QMutex>
#include <QRect>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace Poppler {
class Document;
class FormField;
} // namespace Poppler

/// A working copy in Poppler's hands, which draws its pages and what is typed into them. Any thread
/// may call any function; one runs at a time, and put() and bytes() do not wait for a drawing to
/// end but end it.
class PopplerForm final
{
public:
    /// Null when Poppler makes nothing of the bytes; a document that needs a password is locked.
    [[nodiscard]] static std::unique_ptr<Poppler::Document> load(const QByteArray &bytes);
    /// The text as Poppler draws it without running its parts together: line ends as "\n" where the
    /// field has lines and as spaces where it has one, tabs as spaces.
    [[nodiscard]] static QString drawnText(const FormField &field, QString text);

    /// Throws QSError::invalid. Gives the widgets their places; one that Poppler doesn't draw is
    /// neither shown nor settable from here on and stays in the file as it is.
    PopplerForm(const QByteArray &bytes, QList<Widget> &widgets);
    ~PopplerForm();
    Q_DISABLE_COPY_MOVE(PopplerForm)

    /// In points, rotation applied, by page.
    [[nodiscard]] const QList<QSizeF> &pageSizes() const { return m_sizes; }
    [[nodiscard]] const QStringList &pageLabels() const { return m_labels; }
    /// True when the widget can be given a value here.
    [[nodiscard]] bool draws(int id) const { return m_handles.at(size_t(id)) != nullptr; }

    /// Draws the widgets' values from now on, whatever they were before.
    void put(const QList<Widget> &widgets);
    [[nodiscard]] QImage render(int page, double dotsPerInch, const QRect &clip,
                                const std::function<bool()> &cancelled) const;
    [[nodiscard]] QString text(int page, const QRectF &rect) const;
    /// The working copy with all that was put. Throws QSError::invalid.
    [[nodiscard]] QByteArray bytes() const;

private:
    void findWidgets(QList<Widget> &widgets);
    void adopt(Widget &widget, int page, std::unique_ptr<Poppler::FormField> handle);

    QList<QSizeF> m_sizes;
    QStringList m_labels;
    mutable std::atomic<int> m_pressing = 0; // how many wait or run that a drawing makes way for
    mutable QMutex m_mutex;                  // guards what follows
    QByteArray m_bytes;
    bool m_touched = false; // Poppler's copy is no longer that of m_bytes
    std::unique_ptr<Poppler::Document> m_document;
    std::vector<std::unique_ptr<Poppler::FormField>> m_handles; // by widget's id
};
