#pragma once

#include "FormFault.h"
#include "FormField.h"
#include "PageRenderer.h"

#include <QHash>
#include <QScrollArea>
#include <QTimer>

class FieldControl;
class PageSheet;
class QSPDFDocument;

/// The pages of a form below each other, to be read, scrolled, zoomed and filled in. Pages are
/// drawn by a PageRenderer as they come into view, fields are controls over them. What is typed is
/// reported by edited(); whoever sets it in the document calls refresh().
///
/// Tab goes from field to field in the document's own order, page by page and beyond what is in
/// view, and leaves after the last one.
class FormView final : public QScrollArea, public PageRenderer::Client
{
    Q_OBJECT

public:
    explicit FormView(PageRenderer &renderer, QWidget *parent = nullptr);
    ~FormView() override;

    /// Shows a document from its first page, as wide as the room allows; none when it is null.
    void open(const std::shared_ptr<QSPDFDocument> &document);
    /// These fields may hold other values now.
    void refresh(const QList<int> &fields);

    [[nodiscard]] int currentPage() const { return m_currentPage; }
    /// 1 is the size of the paper.
    [[nodiscard]] double zoom() const { return m_zoom; }
    /// The control of a field; null for a field that is not shown.
    [[nodiscard]] FieldControl *control(int field);
    /// Takes what an input method still composes into the field that it is typed in.
    void commitInput();
    /// Gives a field the keyboard and brings it into view.
    void focusField(int field, Qt::FocusReason reason);

    void goToPage(int page);
    void goToNextPage() { goToPage(m_currentPage + 1); }
    void goToPreviousPage() { goToPage(m_currentPage - 1); }
    void zoomIn();
    void zoomOut();
    void zoomToPaper() { setZoom(1); }
    /// As wide as the room, now and when that changes.
    void fitWidth();

    [[nodiscard]] std::optional<PageRenderer::Job> nextJob() override;
    [[nodiscard]] bool wants(const PageRenderer::Job &job) const override;
    void take(const PageRenderer::Job &job, const QImage &drawing) override;
    void lose(const PageRenderer::Job &job, bool hopeless) override;

Q_SIGNALS:
    void edited(int field, const FormValue &value);
    /// What was typed into the first of these fields goes on in the others.
    void editedTogether(const QList<std::pair<int, FormValue>> &values);
    /// So many characters of what was typed did not fit.
    void leftOut(qsizetype characters);
    /// The keyboard came to a field, or left one.
    void fieldChanged();
    /// The keyboard left a field whose answer would not be whole on paper.
    void faultLeft(const FormFault &fault);
    void currentPageChanged(int page);
    void zoomChanged();
    /// A page looks different from before.
    void pageRedrawn(int page);

protected:
    bool focusNextPrevChild(bool next) override;
    void changeEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    enum class Fit { none, width, comfortable };

    void setZoom(double zoom);
    void stepZoom(bool larger);
    /// Zooms so that what is at a point of the viewport stays there.
    void zoomTo(double zoom, const QPoint &anchor);
    void applyFit();
    void layOut();
    void pagesMoved();
    void createControls(PageSheet &sheet);
    void connectControl(FieldControl *control);
    /// Spreads a text that is too long for its field over the row that it stands in.
    void spread(FieldControl *control, const QString &text, int cursor);
    /// Deletes a letter from the field that goes on in this one.
    void stepBack(int field);
    [[nodiscard]] double pixelsPerPoint() const;
    [[nodiscard]] int gap() const; ///< pixels around and between the sheets
    /// The part of a sheet that can be seen, in its own pixels.
    [[nodiscard]] QRect visiblePart(const PageSheet &sheet) const;
    /// The field with the keyboard, or -1.
    [[nodiscard]] int focusedField() const;
    /// The field that Tab goes to, or -1.
    [[nodiscard]] int nextField(bool next) const;

    PageRenderer &m_renderer;
    std::shared_ptr<QSPDFDocument> m_document;
    QWidget *m_desk; ///< what the sheets lie on
    QList<PageSheet *> m_sheets;
    QHash<int, int> m_tabPlaces; ///< of fields in the tab order
    QTimer m_settle;             ///< until what is being typed is drawn
    Fit m_fit = Fit::comfortable;
    double m_zoom = 1;
    int m_currentPage = 0;
};
