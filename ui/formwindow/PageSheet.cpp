#include "PageSheet.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace {
/// Dots up to which a page is drawn whole; beyond, only the part in view and around it.
constexpr qint64 wholePage = 4'000'000;
} // namespace

PageSheet::PageSheet(int page, const QSizeF &points, QWidget *parent)
    : QWidget(parent), m_page(page), m_points(points)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PageSheet::setScale(double scale)
{
    m_scale = scale;
    resize((m_points * scale).toSize());
    for (FieldControl *control : std::as_const(m_controls)) {
        control->place(scale);
    }
    update();
}

void PageSheet::createControls(const QList<const FormField *> &fields)
{
    if (std::exchange(m_created, true)) {
        return;
    }
    for (const FormField *field : fields) {
        FieldControl *control = FieldControl::make(*field, this);
        control->place(m_scale);
        connect(control, &FieldControl::openChanged, this, qOverload<>(&QWidget::update));
        m_controls.append(control);
    }
}

FieldControl *PageSheet::control(int field) const
{
    const auto found = std::ranges::find(m_controls, field,
                                         [](const FieldControl *each) { return each->field().id; });
    return found == m_controls.end() ? nullptr : *found;
}

double PageSheet::dotsPerInch() const
{
    return m_scale * 72 * devicePixelRatioF();
}

QRect PageSheet::dots(const QRectF &pixels) const
{
    const double ratio = devicePixelRatioF();
    return QRectF(pixels.topLeft() * ratio, pixels.size() * ratio).toAlignedRect();
}

std::optional<PageRenderer::Job> PageSheet::nextJob(const QRect &visible, bool changes)
{
    if (visible.isEmpty() || m_hopeless == dotsPerInch()) {
        return std::nullopt;
    }
    const QRect whole = dots(rect());
    PageRenderer::Job job{m_page, dotsPerInch(), {}};
    const QRect needed = dots(visible).intersected(whole);
    if (m_drawing.isNull() || m_drawn.dotsPerInch != job.dotsPerInch ||
        !m_drawn.clip.contains(needed)) {
        const int aroundX = needed.width() / 2;
        const int aroundY = needed.height() / 2;
        job.clip = qint64(whole.width()) * whole.height() <= wholePage
                       ? whole
                       : needed.adjusted(-aroundX, -aroundY, aroundX, aroundY).intersected(whole);
        m_outdated = {};
        return job;
    }
    if (!changes || m_outdated.isEmpty()) {
        return std::nullopt;
    }
    job.clip = std::exchange(m_outdated, {}).intersected(m_drawn.clip);
    return job.clip.isEmpty() ? std::nullopt : std::optional(job);
}

bool PageSheet::wants(const PageRenderer::Job &job) const
{
    return job.dotsPerInch == dotsPerInch();
}

void PageSheet::take(const PageRenderer::Job &job, const QImage &drawing)
{
    if (!wants(job)) {
        return;
    }
    const bool isPart = !m_drawing.isNull() && m_drawn.dotsPerInch == job.dotsPerInch &&
                        m_drawn.clip.contains(job.clip) && m_drawn.clip != job.clip;
    if (isPart) {
        QPainter painter(&m_drawing);
        painter.drawImage(job.clip.topLeft() - m_drawn.clip.topLeft(), drawing);
    } else {
        m_drawing = drawing;
        m_drawn = job;
    }
    if (m_outdated.isEmpty()) {
        for (FieldControl *control : std::as_const(m_controls)) {
            control->setPending(false);
        }
    }
    update();
}

void PageSheet::lose(const PageRenderer::Job &job, bool hopeless)
{
    if (hopeless) {
        m_hopeless = job.dotsPerInch;
    } else if (wants(job)) {
        m_outdated |= job.clip;
    }
}

void PageSheet::outdate(const FieldControl &control)
{
    // an appearance may reach a little beyond its field
    const QRectF area(control.widget()->geometry());
    m_outdated |=
        dots(area.adjusted(-m_scale, -m_scale, m_scale, m_scale)).intersected(dots(rect()));
}

void PageSheet::forget()
{
    m_drawing = {};
    m_outdated = {};
    m_hopeless = 0;
}

void PageSheet::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.fillRect(event->rect(), Qt::white);
    if (!m_drawing.isNull()) {
        // at another zoom than it was drawn for, the old drawing stands in
        const double ratio = dotsPerInch() / m_drawn.dotsPerInch / devicePixelRatioF();
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(
            QRectF(QPointF(m_drawn.clip.topLeft()) * ratio, QSizeF(m_drawing.size()) * ratio),
            m_drawing);
    }
    paintFields(painter);
}

/// A frame, and at its end a flag with an exclamation mark.
void PageSheet::paintFault(QPainter &painter, const QRect &field) const
{
    static const QColor red(0xc0, 0x1c, 0x1c);
    const int line = qMax(2, fontMetrics().height() / 8);
    painter.setPen(QPen(red, line));
    painter.drawRect(field.adjusted(0, 0, -1, -1));
    const int side = fontMetrics().height();
    QRect flag(0, 0, side, side);
    flag.moveCenter({field.right() + side / 2, field.center().y()});
    flag.moveRight(qMin(flag.right(), width() - 1));
    painter.fillRect(flag, red);
    painter.setPen(Qt::white);
    painter.drawText(flag, Qt::AlignCenter, QStringLiteral("!"));
}

void PageSheet::paintFields(QPainter &painter) const
{
    QColor tint = palette().color(QPalette::Highlight);
    tint.setAlphaF(0.13F);
    const int line = qMax(2, fontMetrics().height() / 8);
    for (const FieldControl *control : m_controls) {
        const QRect at = control->widget()->geometry();
        if (!control->field().isSettable()) {
            continue;
        }
        painter.fillRect(at, control->coversPage() ? QColor(Qt::white) : tint);
        if (control->fault() && !control->isOpen()) {
            paintFault(painter, at);
        }
        if (control->isOpen()) { // seen on white as on a dark part of the form
            painter.setPen(QPen(Qt::black, 1));
            painter.drawRect(at.adjusted(-line - 1, -line - 1, line, line));
            painter.setPen(QPen(palette().color(QPalette::Highlight), line));
            painter.drawRect(QRectF(at).adjusted(-line / 2.0, -line / 2.0, line / 2.0, line / 2.0));
        }
    }
}
