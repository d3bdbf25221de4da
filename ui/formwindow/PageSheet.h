#pragma once

#include "FieldControl.h"
#include "PageRenderer.h"

#include <QWidget>

/// One page of a form as a sheet of paper: the drawing it was given last, and over it the controls
/// of its fields. Owned by the FormView, which lays it out and has it drawn. Main thread.
class PageSheet final : public QWidget
{
    Q_OBJECT

public:
    /// Size of the page in points.
    PageSheet(int page, const QSizeF &points, QWidget *parent);

    [[nodiscard]] int page() const { return m_page; }
    /// Takes its size at so many pixels for a point, and keeps its old drawing until it has
    /// another.
    void setScale(double scale);

    /// Makes the controls of these fields; once.
    void createControls(const QList<const FormField *> &fields);
    [[nodiscard]] bool hasControls() const { return m_created; }
    [[nodiscard]] const QList<FieldControl *> &controls() const { return m_controls; }
    [[nodiscard]] FieldControl *control(int field) const;

    /// What is to be drawn for a part of it to be seen, in its own pixels; changed areas only when
    /// these are wanted too.
    [[nodiscard]] std::optional<PageRenderer::Job> nextJob(const QRect &visible, bool changes);
    [[nodiscard]] bool wants(const PageRenderer::Job &job) const;
    void take(const PageRenderer::Job &job, const QImage &drawing);
    void lose(const PageRenderer::Job &job, bool hopeless);
    /// A field holds another value than the drawing shows.
    void outdate(const FieldControl &control);
    /// Gives its drawing up; the sheet is out of sight.
    void forget();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] double dotsPerInch() const;
    /// A rectangle of the sheet in dots.
    [[nodiscard]] QRect dots(const QRectF &pixels) const;
    void paintFields(QPainter &painter) const;
    void paintFault(QPainter &painter, const QRect &field) const;

    int m_page;
    QSizeF m_points;
    double m_scale = 1;
    QList<FieldControl *> m_controls;
    bool m_created = false;
    QImage m_drawing;
    PageRenderer::Job m_drawn; ///< what m_drawing is
    QRect m_outdated;          ///< part of the drawing that is to be drawn again, in dots
    double m_hopeless = 0;     ///< the resolution that can't be drawn
};
