#include "QSPDFDocument.h"

#include "FieldDrawing.h"
#include "FieldDrawings.h"
#include "FieldLabels.h"
#include "Flattening.h"
#include "Opening.h"
#include "PopplerForm.h"
#include "QSError.h"
#include "QpdfFile.h"
#include "ReadBack.h"
#include "TabOrder.h"
#include "WorkingCopy.h"

#include <QHash>
#include <QMutex>

#include <poppler-qt6.h>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>

#include <algorithm>
#include <array>
#include <functional>

#ifdef __GLIBC__
#include <malloc.h>
#endif

using namespace Qt::Literals::StringLiterals;

namespace {
using Kind = FormField::Kind;

constexpr QSizeF letter(612, 792);

bool hasHeader(const QByteArray &bytes)
{
    constexpr qsizetype searched = 1024; // programs find the header behind some other bytes too
    return bytes.first(std::min(searched, bytes.size())).contains("%PDF-");
}

/// A file that only Poppler can read has pages to look at and to print, and no fields.
WorkingCopy viewOnly(const QByteArray &bytes)
{
    return {.bytes = bytes,
            .widgets = {},
            .tabs = {},
            .structure = {},
            .isPacked = false,
            .isForXFA = false};
}

WorkingCopy workingCopy(const QByteArray &bytes, Opening &opening)
{
    try {
        return WorkingCopy::make(bytes, opening);
    } catch (const QSError &) {
        throw;
    } catch (const QPDFExc &error) {
        if (error.getErrorCode() == qpdf_e_password) {
            throw QSError::invalid(
                u"This PDF is protected with a password, so it can't be opened here."_s);
        }
    } catch (const std::exception &) {
        // The pages may be in order where the form is not.
    }
    opening.goOn(); // qpdf may have taken the end for damage
    return viewOnly(bytes);
}

/// No more characters than the limit, none of them cut in half.
QString limited(const QString &text, int limit)
{
    if (limit <= 0 || text.size() <= limit) {
        return text;
    }
    const QList<uint> letters = text.toUcs4();
    return QString::fromUcs4(reinterpret_cast<const char32_t *>(letters.constData()),
                             std::min<qsizetype>(letters.size(), limit));
}

QString acceptedText(const FormField &field, const QString &text)
{
    // What is typed here is to be opened again.
    const int limit = field.maxLength > 0 ? std::min(field.maxLength, Opening::mostLetters)
                                          : Opening::mostLetters;
    return limited(PopplerForm::drawnText(field, text), limit);
}

FormValue acceptedChoice(const FormField &field, const FormValue &value)
{
    FormValue result;
    for (const int chosen : value.chosen) {
        if (chosen >= 0 && chosen < field.choices.size() && !result.chosen.contains(chosen)) {
            result.chosen.append(chosen);
        }
    }
    std::ranges::sort(result.chosen);
    if (!field.multiSelect && result.chosen.size() > 1) {
        result.chosen.resize(1);
    }
    if (field.editable && result.chosen.isEmpty()) {
        result.text = acceptedText(field, value.text);
    }
    return result;
}

/// The value as the field can take it.
FormValue accepted(const FormField &field, const FormValue &value)
{
    switch (field.kind) {
    case Kind::text:
        return {.text = acceptedText(field, value.text), .on = false, .chosen = {}};
    case Kind::checkBox:
    case Kind::radio:
        return {.text = {}, .on = value.on, .chosen = {}};
    case Kind::comboBox:
    case Kind::listBox:
        return acceptedChoice(field, value);
    case Kind::pushButton:
    case Kind::signature:
        break;
    }
    return {};
}

/// What a widget holds when one of its group is set.
FormValue following(const Widget &set, const FormValue &wanted, const Widget &widget)
{
    if (widget.field.id == set.field.id) {
        return wanted;
    }
    if (!set.isToggle()) {
        // One answer, whatever limits its other places have.
        return widget.field.kind == Kind::text ? wanted : accepted(widget.field, wanted);
    }
    if (set.inUnison && widget.onState == set.onState) {
        return wanted;
    }
    return wanted.on ? FormValue() : widget.value;
}

/// True for a place of the same answer that looks the same: there may be thousands.
bool isAnotherPlace(const Widget &one, const Widget &other)
{
    FormField field = one.field;
    field.id = other.field.id;
    field.page = other.field.page;
    field.rect = other.field.rect;
    return field == other.field && one.value == other.value && one.style == other.style &&
           one.frame == other.frame && one.box == other.box && one.turn == other.turn &&
           one.changed == other.changed;
}

/// Of the widget's value; that of the one drawn last where it serves both.
std::shared_ptr<const FieldDrawing> drawingOf(const Widget &widget, const QList<Widget> &drawn)
{
    return !drawn.isEmpty() && isAnotherPlace(drawn.constLast(), widget)
               ? drawn.constLast().drawing
               : std::make_shared<const FieldDrawing>(widget);
}

FormFault faultIn(const Widget &widget)
{
    return {.id = widget.field.id,
            .page = widget.field.page,
            .label = widget.field.label,
            .rest = {},
            .missing = {},
            .typed = widget.changed};
}

/// What the drawing itself tells. A widget that isn't printed has nothing to lose on paper.
std::optional<FormFault> faultOf(const Widget &widget)
{
    if (!widget.drawing || !widget.printed || widget.field.rect.isEmpty()) {
        return std::nullopt;
    }
    FormFault fault = faultIn(widget);
    fault.rest = widget.drawing->rest();
    fault.missing = widget.drawing->missing();
    return fault.rest.isEmpty() && fault.missing.isEmpty() ? std::nullopt : std::optional(fault);
}

/// Whatever the libraries object to, as a sentence.
template <typename Make>
auto orSentence(const Make &make)
{
    try {
        return make();
    } catch (const QSError &) {
        throw;
    } catch (const std::exception &error) {
        throw QSError::invalid(u"The filled form could not be written: %1"_s.arg(
            QString::fromLocal8Bit(error.what())));
    }
}
} // namespace

/// The values are kept here; the form only draws them.
class QSPDFDocument::Private final
{
public:
    Private(WorkingCopy copy, const Opening &opening);

    [[nodiscard]] QList<int> setValue(int id, const FormValue &value);
    [[nodiscard]] std::optional<FormFault> fault(int id) const;
    [[nodiscard]] QByteArray file() const;
    [[nodiscard]] FlatCopy flatCopy() const;
    /// True for the one page that a form for another kind of program has instead of its own.
    [[nodiscard]] bool isShell() const;

    mutable QMutex m_mutex; // guards the widgets; the form and what follows it need no guard
    QList<Widget> m_widgets;
    PopplerForm m_form;
    QList<FormField> m_fields;
    QList<int> m_tabOrder;
    QHash<QString, QList<int>> m_groups; // ids by Widget::group

private:
    [[nodiscard]] QList<Widget> widgets() const;

    const bool m_isViewOnly;
    const bool m_isForXFA;
    const QpdfFile::Packing m_packing;
};

QSPDFDocument::Private::Private(WorkingCopy copy, const Opening &opening)
    : m_widgets(std::move(copy.widgets)),
      m_form(copy.bytes, m_widgets, opening),
      m_isViewOnly(copy.tabs.isEmpty()),
      m_isForXFA(copy.isForXFA),
      m_packing(copy.isPacked ? QpdfFile::Packing::packed : QpdfFile::Packing::open)
{
    for (Widget &widget : m_widgets) {
        opening.goOn();
        m_fields.append(widget.field);
        m_groups[widget.group].append(widget.field.id);
        if (widget.hasText() && !widget.kept) {
            widget.drawing = std::make_shared<FieldDrawing>(widget);
        }
    }
    m_form.put(m_widgets);
    FieldLabels::tellApart(m_fields, copy.bytes, opening);
    for (Widget &widget : m_widgets) {
        widget.field.label = m_fields.at(widget.field.id).label;
    }
    m_tabOrder = TabOrder::of(m_fields, copy.tabs, copy.structure);
}

QList<int> QSPDFDocument::Private::setValue(int id, const FormValue &value)
{
    const QMutexLocker lock(&m_mutex);
    if (id < 0 || id >= m_widgets.size() || !m_form.draws(id)) {
        return {};
    }
    const Widget set = m_widgets.at(id);
    if (set.field.kind == Kind::pushButton || set.field.kind == Kind::signature) {
        return {};
    }
    const FormValue wanted = accepted(set.field, value);
    QList<int> affected = {id};
    QList<Widget> different;
    for (const int other : m_groups.value(set.group)) {
        if (!m_form.draws(other)) {
            continue;
        }
        Widget &widget = m_widgets[other];
        if (other != id) {
            affected.append(other);
        }
        const FormValue next = following(set, wanted, widget);
        const bool differs = next != widget.value;
        widget.changed = widget.changed || differs || widget.isToggle();
        if (differs) {
            widget.value = next;
            if (widget.hasText()) {
                widget.kept = false;
                widget.drawing = drawingOf(widget, different);
            }
            different.append(widget);
        }
    }
    m_form.put(different);
    return affected;
}

bool QSPDFDocument::Private::isShell() const
{
    const bool maybe = m_isForXFA && m_form.pageSizes().size() == 1;
    const QString text = maybe ? m_form.text(0, {}) : QString();
    return std::ranges::any_of(
        std::array{u"Please wait", u"later version of the PDF viewer", u"requires Adobe"},
        [&text](QStringView words) { return text.contains(words, Qt::CaseInsensitive); });
}

QList<Widget> QSPDFDocument::Private::widgets() const
{
    const QMutexLocker lock(&m_mutex);
    return m_widgets;
}

std::optional<FormFault> QSPDFDocument::Private::fault(int id) const
{
    const QMutexLocker lock(&m_mutex);
    return id >= 0 && id < m_widgets.size() ? faultOf(m_widgets.at(id)) : std::nullopt;
}

QByteArray QSPDFDocument::Private::file() const
{
    if (m_isViewOnly) {
        return m_form.bytes();
    }
    return orSentence([this] {
        const QList<Widget> held = widgets();
        const FieldDrawings drawings(held);
        const QpdfFile file(m_form.bytes());
        WorkingCopy::finish(file.pdf(), held, drawings);
        return file.write(m_packing);
    });
}

QSPDFDocument::FlatCopy QSPDFDocument::Private::flatCopy() const
{
    if (m_isViewOnly) {
        throw QSError::invalid(u"This PDF is damaged, so no flattened copy of it can be made."_s);
    }
    return orSentence([this] {
        const QList<Widget> held = widgets();
        const FieldDrawings drawings(held);
        const QpdfFile file(m_form.bytes());
        WorkingCopy::finish(file.pdf(), held, drawings);
        Flattening::apply(file.pdf());
        FlatCopy copy{file.write(m_packing), {}};
        QList<int> hidden = ReadBack::unread(drawings, held);
        hidden += ReadBack::unseen(copy.pdf, held, m_form);
        for (const Widget &widget : held) {
            if (const auto fault = faultOf(widget)) {
                copy.faults.append(*fault);
            } else if (hidden.contains(widget.field.id)) {
                copy.faults.append(faultIn(widget));
            }
        }
        return copy;
    });
}

std::unique_ptr<QSPDFDocument::Private> QSPDFDocument::opened(const QByteArray &bytes,
                                                              const std::stop_token &stop)
{
    if (!hasHeader(bytes)) {
        throw QSError::invalid(u"This file is not a PDF, so it can't be opened here."_s);
    }
    Opening opening(stop);
    WorkingCopy copy = workingCopy(bytes, opening);
    try {
        return std::make_unique<Private>(std::move(copy), opening);
    } catch (const std::exception &) {
        opening.goOn(); // Poppler may make more of what qpdf has not touched
    }
    return std::make_unique<Private>(viewOnly(bytes), opening);
}

std::shared_ptr<QSPDFDocument> QSPDFDocument::open(const QByteArray &bytes,
                                                   const std::stop_token &stop)
{
    std::unique_ptr<Private> data = opened(bytes, stop);
    if (data->isShell()) {
        throw QSError::invalid(
            u"This form is made for another kind of program (XFA) and can't be shown here. The agency's page may offer another version."_s);
    }
    std::shared_ptr<QSPDFDocument> document(new QSPDFDocument(std::move(data)));
#ifdef __GLIBC__
    // qpdf's objects took several times the file's size and are gone; the worker that opened it
    // may never need as much again.
    malloc_trim(0);
#endif
    return document;
}

bool QSPDFDocument::isPDF(const QByteArray &bytes)
{
    if (!hasHeader(bytes)) {
        return false;
    }
    try {
        const QpdfFile file(bytes);
        if (!file.pdf().getAllPages().empty()) {
            return true;
        }
    } catch (const QPDFExc &error) {
        if (error.getErrorCode() == qpdf_e_password) {
            return true;
        }
    } catch (const std::exception &) {
        // Poppler may make more of it.
        return PopplerForm::load(bytes) != nullptr;
    }
    const auto document = PopplerForm::load(bytes);
    return document && (document->isLocked() || document->numPages() > 0);
}

bool QSPDFDocument::isSound(const QByteArray &bytes)
{
    return QpdfFile::isSound(bytes);
}

QSPDFDocument::QSPDFDocument(std::unique_ptr<Private> data) : d(std::move(data)) {}

QSPDFDocument::~QSPDFDocument() = default;

int QSPDFDocument::pageCount() const
{
    return static_cast<int>(d->m_form.pageSizes().size());
}

QSizeF QSPDFDocument::pageSize(int page) const
{
    return d->m_form.pageSizes().value(page, letter);
}

QString QSPDFDocument::pageLabel(int page) const
{
    return d->m_form.pageLabels().value(page);
}

const QList<FormField> &QSPDFDocument::fields() const
{
    return d->m_fields;
}

const QList<int> &QSPDFDocument::tabOrder() const
{
    return d->m_tabOrder;
}

FormValue QSPDFDocument::value(int id) const
{
    const QMutexLocker lock(&d->m_mutex);
    return d->m_widgets.value(id).value;
}

QList<FormValue> QSPDFDocument::values() const
{
    QList<FormValue> values;
    const QMutexLocker lock(&d->m_mutex);
    std::ranges::transform(d->m_widgets, std::back_inserter(values), &Widget::value);
    return values;
}

QList<int> QSPDFDocument::setValue(int id, const FormValue &value)
{
    return d->setValue(id, value);
}

PageDrawing QSPDFDocument::render(int page, double dotsPerInch, const QRect &clip,
                                  const std::function<bool()> &cancelled) const
{
    return d->m_form.render(page, dotsPerInch, clip, cancelled);
}

QString QSPDFDocument::text(int page, const QRectF &rect) const
{
    return d->m_form.text(page, rect);
}

QByteArray QSPDFDocument::bytes() const
{
    return d->file();
}

std::optional<FormFault> QSPDFDocument::fault(int id) const
{
    return d->fault(id);
}

QSPDFDocument::FlatCopy QSPDFDocument::flatCopy() const
{
    return d->flatCopy();
}

QByteArray QSPDFDocument::flattened() const
{
    const FlatCopy copy = flatCopy();
    if (!copy.faults.isEmpty()) {
        throw QSError::invalid(u"The form can't be flattened or printed as it is. "_s +
                               FormFault::sentence(copy.faults));
    }
    return copy.pdf;
}
