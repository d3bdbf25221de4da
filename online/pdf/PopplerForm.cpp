#include "PopplerForm.h"

#include "QSError.h"
#include "WorkingCopy.h"

#include <QBuffer>
#include <QHash>
#include <QtMath>

#include <poppler-form.h>
#include <poppler-qt6.h>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr QSizeF letter(612, 792);
constexpr double pointsPerInch = 72;
constexpr double mostDots = 64e6;    // of one drawing: 256 MB, a Letter page at 800 dots per inch
constexpr double mostAcross = 32767; // dots of a whole page; far beyond, letters alone fill memory

/// Something that people wait for and that waits for its turn or runs; drawing stops for it.
class Pressing final
{
public:
    explicit Pressing(std::atomic<int> &count) : m_count(count) { ++m_count; }
    ~Pressing() { --m_count; }
    Q_DISABLE_COPY_MOVE(Pressing)

private:
    std::atomic<int> &m_count;
};

/// Whether a drawing is to stop, asked through the plain pointer that Poppler hands on.
struct Interruption
{
    const std::function<bool()> &cancelled;
    const std::atomic<int> &pressing;
    bool wasDue = false;

    bool isDue()
    {
        wasDue = wasDue || pressing > 0 || (cancelled && cancelled());
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

void putValue(Poppler::FormField *handle, const Widget &widget)
{
    const FormValue &value = widget.value;
    const QString drawn = PopplerForm::drawnText(widget.field, value.text);
    if (auto *text = dynamic_cast<Poppler::FormFieldText *>(handle)) {
        text->setText(drawn);
    } else if (auto *button = dynamic_cast<Poppler::FormFieldButton *>(handle)) {
        button->setState(value.on);
    } else if (auto *choice = dynamic_cast<Poppler::FormFieldChoice *>(handle)) {
        choice->setCurrentChoices(value.chosen);
        if (!drawn.isEmpty()) {
            choice->setEditChoice(drawn);
        }
    }
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

PopplerForm::PopplerForm(const QByteArray &bytes, QList<Widget> &widgets)
    : m_bytes(bytes), m_document(load(bytes)), m_handles(static_cast<size_t>(widgets.size()))
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
    for (int number = 0; number < count; ++number) {
        const auto page = m_document->page(number);
        const QSizeF size = page ? page->pageSizeF() : QSizeF();
        m_sizes.append(size.isValid() && !size.isEmpty() ? size : letter);
        const QString label = page ? page->label() : QString();
        m_labels.append(label.isEmpty() ? QString::number(number + 1) : label);
    }
    findWidgets(widgets);
}

PopplerForm::~PopplerForm() = default;

void PopplerForm::findWidgets(QList<Widget> &widgets)
{
    QHash<QString, int> ids;
    for (const Widget &widget : std::as_const(widgets)) {
        ids.insert(WorkingCopy::nameOf(widget.field.id), widget.field.id);
    }
    for (int number = 0; number < m_sizes.size() && !ids.isEmpty(); ++number) {
        const auto page = m_document->page(number);
        if (!page) {
            continue;
        }
        for (std::unique_ptr<Poppler::FormField> &handle : page->formFields()) {
            if (const auto id = ids.constFind(handle->name()); id != ids.constEnd()) {
                adopt(widgets[*id], number, std::move(handle));
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

void PopplerForm::adopt(Widget &widget, int page, std::unique_ptr<Poppler::FormField> handle)
{
    const QRectF part = handle->rect().normalized();
    const QSizeF size = m_sizes.at(page);
    widget.field.page = page;
    widget.field.rect = {part.x() * size.width(), part.y() * size.height(),
                         part.width() * size.width(), part.height() * size.height()};
    widget.field.shown = widget.field.shown && !widget.field.rect.isEmpty();
    m_handles.at(static_cast<size_t>(widget.field.id)) = std::move(handle);
}

void PopplerForm::put(const QList<Widget> &widgets)
{
    const Pressing pressing(m_pressing);
    const QMutexLocker lock(&m_mutex);
    for (const Widget &widget : widgets) {
        putValue(m_handles.at(static_cast<size_t>(widget.field.id)).get(), widget);
        m_touched = true;
    }
}

QImage PopplerForm::render(int page, double dotsPerInch, const QRect &clip,
                           const std::function<bool()> &cancelled) const
{
    if (page < 0 || page >= m_sizes.size()) {
        return {};
    }
    const QRect part = drawnPart(m_sizes.at(page), dotsPerInch, clip);
    Interruption interruption{cancelled, m_pressing};
    const QMutexLocker lock(&m_mutex);
    if (part.isEmpty() || interruption.isDue()) {
        return {};
    }
    const auto source = m_document->page(page);
    if (!source) {
        return {};
    }
    const QImage image =
        source->renderToImage(dotsPerInch, dotsPerInch, part.x(), part.y(), part.width(),
                              part.height(), Poppler::Page::Rotate0, nullptr, nullptr,
                              &Interruption::ask, QVariant::fromValue<void *>(&interruption));
    return interruption.wasDue ? QImage() : image;
}

QString PopplerForm::text(int page, const QRectF &rect) const
{
    const QMutexLocker lock(&m_mutex);
    const auto source = m_document->page(page);
    return source ? source->text(rect) : QString();
}

QByteArray PopplerForm::bytes() const
{
    const Pressing pressing(m_pressing);
    const QMutexLocker lock(&m_mutex);
    if (!m_touched) {
        return m_bytes;
    }
    QByteArray saved;
    QBuffer buffer(&saved);
    const auto converter = m_document->pdfConverter();
    converter->setOutputDevice(&buffer);
    converter->setPDFOptions(Poppler::PDFConverter::WithChanges);
    if (!converter->convert()) {
        throw QSError::invalid(u"The filled form could not be written."_s);
    }
    return saved;
}
