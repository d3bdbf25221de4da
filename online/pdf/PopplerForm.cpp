#include "PopplerForm.h"

#include "FieldDrawing.h"
#include "Opening.h"
#include "QSError.h"
#include "TextCanvas.h"
#include "WorkingCopy.h"

#include <QtMath>

#include <poppler-form.h>
#include <poppler-qt6.h>

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
using Outcome = PageDrawing::Outcome;

constexpr QSizeF letter(612, 792);
constexpr double pointsPerInch = 72;
constexpr double mostDots = 64e6;    // of one drawing: 256 MB, a Letter page at 800 dots per inch
constexpr double mostAcross = 32767; // dots of a whole page; far beyond, letters alone fill memory

/// Whether a drawing is to stop, asked through the plain pointer that Poppler hands on.
struct Interruption
{
    const std::function<bool()> &cancelled;
    const std::atomic<int> &changes; ///< of the page
    int before = 0;                  ///< the drawing began
    bool wasDue = false;

    bool isDue()
    {
        wasDue = wasDue || changes != before || (cancelled && cancelled());
        return wasDue;
    }
    static bool ask(const QVariant &self)
    {
        return static_cast<Interruption *>(self.value<void *>())->isDue();
    }
};

/// The part of a page to draw, in dots; empty when it is nothing that can be drawn.
QRect drawnPart(const QSizeF &page, double dotsPerInch, const QRect &clip)
{
    const QSizeF size = page * dotsPerInch / pointsPerInch;
    if (!(dotsPerInch > 0 && size.width() < mostAcross && size.height() < mostAcross)) {
        return {};
    }
    const QRect part =
        clip.isNull() ? QRect(0, 0, qCeil(size.width()), qCeil(size.height())) : clip;
    const double dots = static_cast<double>(part.width()) * part.height();
    return part.isEmpty() || dots > mostDots ? QRect() : part;
}

/// From a drawing, upright and in points, to its place on a page.
QTransform turned(const QRectF &place, int turn)
{
    switch (turn) {
    case 90:
        return {0, -1, 1, 0, place.left(), place.bottom()};
    case 180:
        return {-1, 0, 0, -1, place.right(), place.bottom()};
    case 270:
        return {0, 1, -1, 0, place.right(), place.top()};
    default:
        return QTransform::fromTranslate(place.left(), place.top());
    }
}

/// How far a page is turned when it is shown, in degrees, clockwise.
int turnOf(const Poppler::Page &page)
{
    switch (page.orientation()) {
    case Poppler::Page::Landscape:
        return 90;
    case Poppler::Page::UpsideDown:
        return 180;
    case Poppler::Page::Seascape:
        return 270;
    case Poppler::Page::Portrait:
        break;
    }
    return 0;
}
} // namespace

std::unique_ptr<Poppler::Document> PopplerForm::load(const QByteArray &bytes)
{
    static const bool silent = [] {
        Poppler::setDebugErrorFunction([](const QString &, const QVariant &) {}, {});
        return true;
    }();
    Q_UNUSED(silent)
    return Poppler::Document::loadFromData(bytes);
}

QString PopplerForm::drawnText(const FormField &field, QString text)
{
    text.replace(u"\r\n"_s, u"\n"_s);
    for (QChar &character : text) {
        if (u"\n\r\u2028\u2029"_s.contains(character)) {
            character = field.multiLine ? u'\n' : u' ';
        } else if (u"\t\v\f"_s.contains(character)) {
            character = u' ';
        }
    }
    return text;
}

PopplerForm::PopplerForm(const QByteArray &bytes, QList<Widget> &widgets, const Opening &opening)
    : m_bytes(bytes),
      m_document(load(bytes)),
      m_handles(static_cast<size_t>(widgets.size())),
      m_places(static_cast<size_t>(widgets.size()))
{
    if (m_document && m_document->isLocked()) {
        throw QSError::invalid(
            u"This PDF is protected with a password, so it can't be opened here."_s);
    }
    if (!m_document || m_document->numPages() < 1) {
        throw QSError::invalid(u"This PDF is damaged, so it can't be opened here."_s);
    }
    m_document->setPaperColor(Qt::white);
    m_document->setRenderHint(Poppler::Document::Antialiasing);
    m_document->setRenderHint(Poppler::Document::TextAntialiasing);
    const int count = m_document->numPages();
    m_changes = std::vector<std::atomic<int>>(static_cast<size_t>(count));
    for (int number = 0; number < count; ++number) {
        opening.goOn();
        const auto page = m_document->page(number);
        const QSizeF size = page ? page->pageSizeF() : QSizeF();
        m_sizes.append(size.isValid() && !size.isEmpty() ? size : letter);
        const QString label = page ? page->label() : QString();
        m_labels.append(label.isEmpty() ? QString::number(number + 1) : label);
    }
    findWidgets(widgets, opening);
}

PopplerForm::~PopplerForm() = default;

void PopplerForm::findWidgets(QList<Widget> &widgets, const Opening &opening)
{
    QHash<QString, int> ids;
    for (const Widget &widget : std::as_const(widgets)) {
        ids.insert(WorkingCopy::nameOf(widget.field.id), widget.field.id);
    }
    for (int number = 0; number < m_sizes.size() && !ids.isEmpty(); ++number) {
        opening.goOn();
        const auto page = m_document->page(number);
        if (!page) {
            continue;
        }
        for (std::unique_ptr<Poppler::FormField> &handle : page->formFields()) {
            if (const auto id = ids.constFind(handle->name()); id != ids.constEnd()) {
                adopt(widgets[*id], *page, std::move(handle));
            }
        }
    }
    for (Widget &widget : widgets) {
        if (!draws(widget.field.id)) {
            widget.field.shown = false;
            widget.field.readOnly = true;
        }
    }
}

void PopplerForm::adopt(Widget &widget, const Poppler::Page &page,
                        std::unique_ptr<Poppler::FormField> handle)
{
    constexpr int full = 360;
    const QRectF part = handle->rect().normalized();
    const QSizeF size = m_sizes.at(page.index());
    widget.field.page = page.index();
    widget.field.rect = {part.x() * size.width(), part.y() * size.height(),
                         part.width() * size.width(), part.height() * size.height()};
    widget.field.shown = widget.field.shown && !widget.field.rect.isEmpty();
    const auto id = static_cast<size_t>(widget.field.id);
    m_places.at(id) = {.page = widget.field.shown ? page.index() : -1,
                       .rect = widget.field.rect,
                       .turn = (widget.turn - turnOf(page) + full) % full,
                       .drawing = {}};
    m_handles.at(id) = std::move(handle);
}

QTransform PopplerForm::toPage(int id) const
{
    const Place &place = m_places.at(static_cast<size_t>(id));
    return turned(place.rect, place.turn);
}

void PopplerForm::put(const QList<Widget> &widgets)
{
    const QMutexLocker lock(&m_shownMutex);
    for (const Widget &widget : widgets) {
        const int id = widget.field.id;
        Place &place = m_places.at(static_cast<size_t>(id));
        place.drawing = widget.drawing;
        m_switched.insert(id, widget.hasText() ? widget.kept : widget.value.on);
        if (place.page >= 0) {
            ++m_changes.at(static_cast<size_t>(place.page));
        }
    }
}

PopplerForm::Shown PopplerForm::shown(int page) const
{
    const QMutexLocker lock(&m_shownMutex);
    Shown shown;
    shown.switched = std::exchange(m_switched, {});
    shown.changes = m_changes.at(static_cast<size_t>(page));
    std::ranges::copy_if(m_places, std::back_inserter(shown.places), [page](const Place &place) {
        return place.page == page && place.drawing && !place.drawing->isEmpty();
    });
    return shown;
}

PageDrawing PopplerForm::render(int page, double dotsPerInch, const QRect &clip,
                                const std::function<bool()> &cancelled) const
{
    if (page < 0 || page >= m_sizes.size()) {
        return {};
    }
    const QRect part = drawnPart(m_sizes.at(page), dotsPerInch, clip);
    if (part.isEmpty()) {
        return {};
    }
    QMutexLocker lock(&m_mutex);
    const Shown begun = shown(page);
    for (const auto &[id, on] : begun.switched.asKeyValueRange()) {
        auto *handle = m_handles.at(static_cast<size_t>(id)).get();
        if (auto *button = dynamic_cast<Poppler::FormFieldButton *>(handle)) {
            button->setState(on);
        }
    }
    Interruption interruption{cancelled, m_changes.at(static_cast<size_t>(page)), begun.changes};
    if (interruption.isDue()) {
        return {Outcome::madeWay, {}};
    }
    const auto source = m_document->page(page);
    if (!source) {
        return {};
    }
    QImage image =
        source->renderToImage(dotsPerInch, dotsPerInch, part.x(), part.y(), part.width(),
                              part.height(), Poppler::Page::Rotate0, nullptr, nullptr,
                              &Interruption::ask, QVariant::fromValue<void *>(&interruption));
    lock.unlock();
    if (!interruption.wasDue && image.isNull()) {
        return {};
    }
    if (interruption.isDue() || !drawFields(image, begun.places, dotsPerInch, part.topLeft(),
                                            [&interruption] { return interruption.isDue(); })) {
        return {Outcome::madeWay, {}};
    }
    return {Outcome::drawn, image};
}

/// False when it was due to end before it was done.
bool PopplerForm::drawFields(QImage &image, const std::vector<Place> &places, double dotsPerInch,
                             const QPoint &corner, const std::function<bool()> &isDue)
{
    const double scale = dotsPerInch / pointsPerInch;
    const QRectF seen(QPointF(corner) / scale, QSizeF(image.size()) / scale);
    if (image.format() != QImage::Format_RGB32) {
        image.convertTo(QImage::Format_RGB32);
    }
    for (const Place &place : places) {
        if (!place.rect.intersects(seen)) {
            continue;
        }
        if (isDue()) {
            return false;
        }
        const QTransform toDots = turned(place.rect, place.turn) *
                                  QTransform::fromScale(scale, scale) *
                                  QTransform::fromTranslate(-corner.x(), -corner.y());
        PictureCanvas canvas(image, toDots, QRectF({}, place.drawing->size()));
        place.drawing->draw(canvas);
    }
    return true;
}

QString PopplerForm::text(int page, const QRectF &rect) const
{
    const QMutexLocker lock(&m_mutex);
    const auto source = m_document->page(page);
    return source ? source->text(rect) : QString();
}
