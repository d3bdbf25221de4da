#include "FormView.h"

#include "FieldRow.h"
#include "PageSheet.h"
#include "QSPDFDocument.h"
#include "VxScale.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr std::array zoomSteps = {0.5, 0.67, 0.8, 0.9, 1.0, 1.1, 1.25,
                                  1.5, 1.75, 2.0, 2.5, 3.0, 4.0};
constexpr double widestAtFirst = 1.5;
constexpr auto settleTime = 150ms;

/// Controls of ink on the page's own ground, whatever the theme; without a dialog's frames.
constexpr QStringView fieldStyle = uR"(
QLineEdit, QPlainTextEdit, QListWidget, QComboBox {
  background: transparent; color: black; border: none; border-radius: 0; padding: 0; margin: 0;
  selection-background-color: palette(highlight); selection-color: palette(highlighted-text); }
QComboBox QAbstractItemView { background: white; color: black; border: 1px solid black; }
QListWidget::item { padding: 0; color: black; border: none; }
QListWidget::item:selected { background: palette(highlight); color: palette(highlighted-text); }
)";

/// What the sheets lie on; it draws their shadows.
class Desk final : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QPainter painter(this);
        painter.setPen(Qt::NoPen);
        const int depth = qMax(1, fontMetrics().height() / 3);
        for (const QObject *child : children()) {
            const auto *sheet = qobject_cast<const PageSheet *>(child);
            if (!sheet || !sheet->geometry()
                               .adjusted(-depth, -depth, depth, 2 * depth)
                               .intersects(event->rect())) {
                continue;
            }
            for (int ring = depth; ring > 0; --ring) { // softer toward its edge
                painter.setBrush(QColor(0, 0, 0, 90 / depth));
                painter.drawRoundedRect(
                    QRectF(sheet->geometry()).adjusted(-ring, -ring / 2.0, ring, ring * 1.5), ring,
                    ring);
            }
        }
    }
};
} // namespace

FormView::FormView(PageRenderer &renderer, QWidget *parent)
    : QScrollArea(parent), m_renderer(renderer), m_desk(new Desk(this))
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(u"Pages of the form"_s);
    setWidget(m_desk);
    setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // so that a fitted width stays fitted
    m_desk->setProperty("clear", true);
    m_desk->setProperty(VxScale::ownScale, true); // pages have their own zoom
    m_desk->setStyleSheet(fieldStyle.toString());
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleTime);
    connect(&m_settle, &QTimer::timeout, &m_renderer, &PageRenderer::wake);
}

FormView::~FormView() = default;

void FormView::open(const std::shared_ptr<QSPDFDocument> &document)
{
    m_document.reset(); // a field that is hidden with the keyboard in it asks for the next one
    m_tabPlaces.clear();
    for (PageSheet *sheet : std::exchange(m_sheets, {})) {
        for (FieldControl *control : sheet->controls()) {
            control->disconnect(this); // what it holds is no answer of the document to come
        }
        sheet->hide();
        sheet->deleteLater(); // it may be one of its own controls that asked for this
    }
    m_document = document;
    m_currentPage = 0;
    if (!document) {
        return;
    }
    for (int page = 0; page < document->pageCount(); ++page) {
        m_sheets.append(new PageSheet(page, document->pageSize(page), m_desk));
        m_sheets.last()->show();
    }
    for (const int field : document->tabOrder()) {
        m_tabPlaces.insert(field, static_cast<int>(m_tabPlaces.size()));
    }
    m_fit = Fit::comfortable;
    layOut();
    applyFit();
    verticalScrollBar()->setValue(0);
    pagesMoved();
    Q_EMIT currentPageChanged(0);
}

// Layout and zoom

double FormView::pixelsPerPoint() const
{
    return m_zoom * logicalDpiX() / 72;
}

int FormView::gap() const
{
    return fontMetrics().height();
}

void FormView::layOut()
{
    int width = 0;
    int y = gap();
    for (PageSheet *sheet : std::as_const(m_sheets)) {
        sheet->setScale(pixelsPerPoint());
        width = qMax(width, sheet->width());
    }
    for (PageSheet *sheet : std::as_const(m_sheets)) {
        sheet->move(gap() + (width - sheet->width()) / 2, y);
        y += sheet->height() + gap();
    }
    m_desk->resize(width + 2 * gap(), y);
    verticalScrollBar()->setSingleStep(3 * gap());
}

void FormView::applyFit()
{
    if (m_fit == Fit::none || m_sheets.isEmpty()) {
        return;
    }
    double widest = 0;
    for (int page = 0; page < m_document->pageCount(); ++page) {
        widest = qMax(widest, m_document->pageSize(page).width());
    }
    const double room = viewport()->width() - 2 * gap();
    const double most = m_fit == Fit::width ? zoomSteps.back() : widestAtFirst;
    const double fitting = room / (widest * logicalDpiX() / 72);
    zoomTo(qBound(zoomSteps.front(), fitting, most), {viewport()->width() / 2, 0});
}

void FormView::changeEvent(QEvent *event)
{
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) { // the gaps go by it
        layOut();
        applyFit();
        pagesMoved();
    }
}

void FormView::fitWidth()
{
    m_fit = Fit::width;
    applyFit();
}

void FormView::setZoom(double zoom)
{
    m_fit = Fit::none;
    zoomTo(zoom, viewport()->rect().center());
}

void FormView::stepZoom(bool larger)
{
    constexpr double little = 0.005; // a fitted zoom next to a step counts as the step
    const auto up = std::ranges::upper_bound(zoomSteps, m_zoom + little);
    const auto down = std::ranges::lower_bound(zoomSteps, m_zoom - little);
    if (larger) {
        setZoom(up == zoomSteps.end() ? zoomSteps.back() : *up);
    } else {
        setZoom(down == zoomSteps.begin() ? zoomSteps.front() : *std::prev(down));
    }
}

void FormView::zoomIn()
{
    stepZoom(true);
}

void FormView::zoomOut()
{
    stepZoom(false);
}

void FormView::zoomTo(double zoom, const QPoint &anchor)
{
    if (zoom == m_zoom) {
        return;
    }
    const QPointF before = m_desk->mapFrom(viewport(), anchor);
    const double ratio = zoom / std::exchange(m_zoom, zoom);
    layOut();
    horizontalScrollBar()->setValue(qRound(before.x() * ratio - anchor.x()));
    verticalScrollBar()->setValue(qRound(before.y() * ratio - anchor.y()));
    pagesMoved();
    Q_EMIT zoomChanged();
}

void FormView::goToPage(int page)
{
    if (page >= 0 && page < m_sheets.size()) {
        verticalScrollBar()->setValue(m_sheets.at(page)->y() - gap() / 2);
    }
}

QRect FormView::visiblePart(const PageSheet &sheet) const
{
    const QPoint corner = sheet.mapTo(viewport(), QPoint(0, 0));
    return viewport()->rect().translated(-corner).intersected(sheet.rect());
}

void FormView::pagesMoved()
{
    int current = m_currentPage;
    int most = 0;
    for (PageSheet *sheet : std::as_const(m_sheets)) {
        const QRect part = visiblePart(*sheet);
        if (part.height() > most) {
            most = part.height();
            current = sheet->page();
        }
        if (!part.isEmpty()) {
            createControls(*sheet);
        }
    }
    for (PageSheet *sheet : std::as_const(m_sheets)) {
        if (std::abs(sheet->page() - current) > 1 && visiblePart(*sheet).isEmpty()) {
            sheet->forget();
        }
    }
    if (std::exchange(m_currentPage, current) != current) {
        Q_EMIT currentPageChanged(current);
    }
    m_renderer.wake();
}

void FormView::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    applyFit();
    pagesMoved();
}

void FormView::scrollContentsBy(int dx, int dy)
{
    QScrollArea::scrollContentsBy(dx, dy);
    pagesMoved();
}

void FormView::wheelEvent(QWheelEvent *event)
{
    if (!(event->modifiers() & Qt::ControlModifier)) {
        QScrollArea::wheelEvent(event);
        return;
    }
    constexpr double notch = 120; // a wheel's step, in eighths of a degree
    const double factor = std::pow(1.1, event->angleDelta().y() / notch);
    m_fit = Fit::none;
    zoomTo(qBound(zoomSteps.front(), m_zoom * factor, zoomSteps.back()),
           viewport()->mapFrom(this, event->position().toPoint()));
    event->accept();
}

void FormView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Home) {
        verticalScrollBar()->setValue(0);
    } else if (event->key() == Qt::Key_End) {
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    } else {
        QScrollArea::keyPressEvent(event);
    }
}

// Fields

void FormView::createControls(PageSheet &sheet)
{
    if (sheet.hasControls()) {
        return;
    }
    QList<const FormField *> fields;
    for (const FormField &field : m_document->fields()) {
        if (field.page == sheet.page() && field.shown) {
            fields.append(&field);
        }
    }
    sheet.createControls(fields);
    for (FieldControl *control : sheet.controls()) {
        control->setValue(m_document->value(control->field().id));
        control->setFault(m_document->fault(control->field().id));
        connectControl(control);
    }
}

void FormView::connectControl(FieldControl *control)
{
    const int field = control->field().id;
    connect(control, &FieldControl::openChanged, this, &FormView::fieldChanged);
    connect(control, &FieldControl::openChanged, this, [this, control] {
        if (!control->isOpen() && control->fault()) {
            Q_EMIT faultLeft(*control->fault());
        }
    });
    connect(control, &FieldControl::edited, this,
            [this, field](const FormValue &value) { Q_EMIT edited(field, value); });
    connect(control, &FieldControl::exceeded, this,
            [this, control](const QString &text, int cursor) { spread(control, text, cursor); });
    connect(control, &FieldControl::steppedBack, this, [this, field] { stepBack(field); });
}

void FormView::spread(FieldControl *control, const QString &text, int cursor)
{
    const int field = control->field().id;
    const FieldRow::Filled filled = FieldRow::fill(*m_document, field, text, cursor);
    Q_EMIT editedTogether(filled.values);
    control->setValue(m_document->value(field)); // of a number it may have cut another part
    if (filled.end != field) {
        focusField(filled.end, Qt::OtherFocusReason);
    }
    if (filled.leftOut > 0) {
        Q_EMIT leftOut(filled.leftOut);
    }
}

void FormView::stepBack(int field)
{
    const int before = FieldRow::before(*m_document, field);
    if (before >= 0) {
        focusField(before, Qt::OtherFocusReason);
        auto *line = qobject_cast<QLineEdit *>(control(before)->widget());
        line->end(false);
        line->backspace();
    }
}

FieldControl *FormView::control(int field)
{
    if (!m_document || field < 0 || field >= m_document->fields().size()) {
        return nullptr;
    }
    PageSheet *sheet = m_sheets.at(m_document->fields().at(field).page);
    createControls(*sheet);
    return sheet->control(field);
}

void FormView::refresh(const QList<int> &fields)
{
    bool typing = false;
    for (const int field : fields) {
        PageSheet *sheet = m_sheets.at(m_document->fields().at(field).page);
        if (FieldControl *changed = sheet->control(field)) {
            changed->setValue(m_document->value(field));
            changed->setFault(m_document->fault(field));
            changed->setPending(true);
            sheet->outdate(*changed);
            typing =
                typing || (changed->isOpen() && changed->field().kind == FormField::Kind::text);
        }
    }
    if (!typing) {
        m_settle.stop();
    } else if (!m_settle.isActive()) {
        m_settle.start();
    }
    m_renderer.wake();
}

void FormView::commitInput()
{
    QGuiApplication::inputMethod()->commit();
    for (const PageSheet *sheet : std::as_const(m_sheets)) {
        for (FieldControl *each : sheet->controls()) {
            each->commitInput(); // what the input method left uncommitted
        }
    }
}

void FormView::focusField(int field, Qt::FocusReason reason)
{
    if (FieldControl *wanted = control(field)) {
        QWidget *widget = wanted->widget();
        widget->setFocus(reason);
        const QPoint centre = m_desk->mapFromGlobal(widget->mapToGlobal(widget->rect().center()));
        ensureVisible(centre.x(), centre.y(), widget->width() / 2 + gap(),
                      widget->height() / 2 + 2 * gap());
        if (widget->width() > viewport()->width() - 2 * gap()) { // its beginning, to be typed at
            const QPoint start = m_desk->mapFromGlobal(widget->mapToGlobal(QPoint()));
            horizontalScrollBar()->setValue(start.x() - gap());
        }
    }
}

int FormView::focusedField() const
{
    for (const PageSheet *sheet : m_sheets) {
        for (const FieldControl *each : sheet->controls()) {
            if (each->widget()->hasFocus()) {
                return each->field().id;
            }
        }
    }
    return -1;
}

int FormView::nextField(bool next) const
{
    const QList<int> &order = m_document->tabOrder();
    const int place = m_tabPlaces.value(focusedField(), -1);
    if (place >= 0) {
        return order.value(next ? place + 1 : place - 1, -1);
    }
    const auto page = [this](int field) { return m_document->fields().at(field).page; };
    const auto found =
        std::ranges::find_if(order, [&](int field) { return page(field) >= m_currentPage; });
    return next && found != order.end() ? *found : -1;
}

bool FormView::focusNextPrevChild(bool next)
{
    const int field = m_document ? nextField(next) : -1;
    if (field >= 0) {
        focusField(field, next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }
    // The fields are no part of the window's own chain: from them it goes on where the view stands.
    setFocus(Qt::OtherFocusReason);
    return QScrollArea::focusNextPrevChild(next);
}

void FormView::focusInEvent(QFocusEvent *event)
{
    QScrollArea::focusInEvent(event);
    if (!m_document || m_document->tabOrder().isEmpty()) {
        return;
    }
    if (event->reason() == Qt::TabFocusReason) {
        const int field = nextField(true);
        focusField(field >= 0 ? field : m_document->tabOrder().constFirst(), event->reason());
    } else if (event->reason() == Qt::BacktabFocusReason) {
        focusField(m_document->tabOrder().constLast(), event->reason());
    }
}

// Drawing

std::optional<PageRenderer::Job> FormView::nextJob()
{
    for (PageSheet *sheet : std::as_const(m_sheets)) {
        if (auto job = sheet->nextJob(visiblePart(*sheet), !m_settle.isActive())) {
            return job;
        }
    }
    return std::nullopt;
}

bool FormView::wants(const PageRenderer::Job &job) const
{
    const PageSheet *sheet = m_sheets.value(job.page);
    return sheet && sheet->wants(job) && !visiblePart(*sheet).isEmpty();
}

void FormView::take(const PageRenderer::Job &job, const QImage &drawing)
{
    if (PageSheet *sheet = m_sheets.value(job.page)) {
        sheet->take(job, drawing);
        Q_EMIT pageRedrawn(job.page);
    }
}

void FormView::lose(const PageRenderer::Job &job, bool hopeless)
{
    if (PageSheet *sheet = m_sheets.value(job.page)) {
        sheet->lose(job, hopeless);
    }
}
