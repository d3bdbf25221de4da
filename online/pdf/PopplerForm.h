#pragma once

#include "PageDrawing.h"
#include "Widget.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QRect>
#include <QSizeF>
#include <QString>
#include <QStringList>
#include <QTransform>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace Poppler {
class Document;
class FormField;
class Page;
} // namespace Poppler

class Opening;

/// A working copy in Poppler's hands, which draws its pages with their buttons; the drawings of
/// texts and choices are laid over them. Any thread may call any function. Poppler does one thing
/// at a time; put() doesn't wait for it, but a drawing of a page that it changes makes way.
class PopplerForm final
{
public:
    /// Null when Poppler makes nothing of the bytes; a document that needs a password is locked.
    [[nodiscard]] static std::unique_ptr<Poppler::Document> load(const QByteArray &bytes);
    /// The text as Poppler draws it without running its parts together: line ends as "\n" where the
    /// field has lines and as spaces where it has one, tabs as spaces.
    [[nodiscard]] static QString drawnText(const FormField &field, QString text);

    /// Throws QSError::invalid, also when the opening is stopped. Gives the widgets their places;
    /// one that Poppler doesn't draw is neither shown nor settable from here on and stays in the
    /// file as it is.
    PopplerForm(const QByteArray &bytes, QList<Widget> &widgets, const Opening &opening);
    ~PopplerForm();
    Q_DISABLE_COPY_MOVE(PopplerForm)

    /// In points, rotation applied, by page.
    [[nodiscard]] const QList<QSizeF> &pageSizes() const { return m_sizes; }
    [[nodiscard]] const QStringList &pageLabels() const { return m_labels; }
    /// True when the widget can be given a value here.
    [[nodiscard]] bool draws(int id) const { return m_handles.at(size_t(id)) != nullptr; }

    /// From a widget's drawing, upright and in points, to its place on the page as it is shown.
    [[nodiscard]] QTransform toPage(int id) const;

    /// Shows the widgets' values from now on, whatever they were before.
    void put(const QList<Widget> &widgets);
    [[nodiscard]] PageDrawing render(int page, double dotsPerInch, const QRect &clip,
                                     const std::function<bool()> &cancelled) const;
    [[nodiscard]] QString text(int page, const QRectF &rect) const;
    /// The working copy as it was opened.
    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }

private:
    void findWidgets(QList<Widget> &widgets, const Opening &opening);
    void adopt(Widget &widget, const Poppler::Page &page,
               std::unique_ptr<Poppler::FormField> handle);

    /// Where and how a widget's drawing is laid over its page.
    struct Place
    {
        int page = -1;
        QRectF rect;  ///< as in FormField
        int turn = 0; ///< of its drawing on the page as it is shown, in degrees, counterclockwise
        std::shared_ptr<const FieldDrawing> drawing;
    };

    /// What a drawing of a page begins with.
    struct Shown
    {
        std::vector<Place> places; ///< of the page that have something to draw
        QHash<int, bool> switched; ///< buttons, by widget's id, that Poppler has not been told of
        int changes = 0;           ///< of the page until now
    };

    [[nodiscard]] Shown shown(int page) const;
    static bool drawFields(QImage &image, const std::vector<Place> &places, double dotsPerInch,
                           const QPoint &corner, const std::function<bool()> &isDue);

    QByteArray m_bytes;
    QList<QSizeF> m_sizes;
    QStringList m_labels;
    std::vector<std::atomic<int>> m_changes; // by page

    mutable QMutex m_mutex; // guards what is Poppler's
    std::unique_ptr<Poppler::Document> m_document;
    std::vector<std::unique_ptr<Poppler::FormField>> m_handles; // by widget's id

    mutable QMutex m_shownMutex; // guards what follows, and is held for moments only
    std::vector<Place> m_places; // by widget's id; but for the drawings they need no guard
    mutable QHash<int, bool> m_switched;
};
