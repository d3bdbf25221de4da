#include "QSPDFDocument.h"

#include "FieldLabels.h"
#include "Flattening.h"
#include "PopplerForm.h"
#include "QSError.h"
#include "QpdfFile.h"
#include "ReadBack.h"
#include "TabOrder.h"
#include "WorkingCopy.h"

#include <QMutex>

#include <poppler-qt6.h>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>

#include <algorithm>
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
    return {.bytes = bytes, .widgets = {}, .tabs = {}, .structure = {}};
}

WorkingCopy workingCopy(const QByteArray &bytes)
{
    if (!hasHeader(bytes)) {
        throw QSError::invalid(u"This file is not a PDF, so it can't be opened here."_s);
    }
    try {
        return WorkingCopy::make(bytes);
    } catch (const QSError &) {
        throw;
    } catch (const QPDFExc &error) {
        if (error.getErrorCode() == qpdf_e_password) {
            throw QSError::invalid(
                u"This PDF is protected with a password, so it can't be opened here."_s);
        }
        return viewOnly(bytes);
    } catch (const std::exception &) {
        return viewOnly(bytes);
    }
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
    return limited(PopplerForm::drawnText(field, text), field.maxLength);
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
} // namespace

/// The values are kept here; the form only draws them.
class QSPDFDocument::Private final
{
public:
    explicit Private(WorkingCopy copy);

    [[nodiscard]] QList<int> setValue(int id, const FormValue &value);
    [[nodiscard]] QByteArray file(bool flat) const;

    mutable QMutex m_mutex; // guards the widgets; the form and what follows it need no guard
    QList<Widget> m_widgets;
    PopplerForm m_form;
    QList<FormField> m_fields;
    QList<int> m_tabOrder;

private:
    [[nodiscard]] QByteArray finished(bool flat) const;
    /// Without its fields, and read back.
    [[nodiscard]] static QByteArray flattened(const QByteArray &saved,
                                              const QList<Widget> &widgets);

    const bool m_isViewOnly;
};

QSPDFDocument::Private::Private(WorkingCopy copy)
    : m_widgets(std::move(copy.widgets)),
      m_form(copy.bytes, m_widgets),
      m_isViewOnly(copy.tabs.isEmpty())
{
    QList<Widget> stale;
    for (const Widget &widget : std::as_const(m_widgets)) {
        m_fields.append(widget.field);
        if (widget.stale && m_form.draws(widget.field.id)) {
            stale.append(widget);
        }
    }
    m_form.put(stale);
    FieldLabels::tellApart(m_fields, copy.bytes);
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
    for (Widget &widget : m_widgets) {
        const int other = widget.field.id;
        if (widget.group != set.group || !m_form.draws(other)) {
            continue;
        }
        if (other != id) {
            affected.append(other);
        }
        const FormValue next = following(set, wanted, widget);
        const bool differs = next != widget.value;
        widget.changed = widget.changed || differs || widget.isToggle();
        if (differs) {
            widget.value = next;
            different.append(widget);
        }
    }
    m_form.put(different);
    return affected;
}

QByteArray QSPDFDocument::Private::finished(bool flat) const
{
    QMutexLocker lock(&m_mutex);
    QByteArray saved = m_form.bytes();
    const QList<Widget> widgets = m_widgets;
    lock.unlock();
    if (flat && m_isViewOnly) {
        throw QSError::invalid(u"This PDF is damaged, so no flattened copy of it can be made."_s);
    }
    if (m_isViewOnly) {
        return saved;
    }
    if (flat) {
        return flattened(saved, widgets);
    }
    const QpdfFile file(saved);
    WorkingCopy::finish(file.pdf(), widgets);
    return file.write();
}

QByteArray QSPDFDocument::Private::flattened(const QByteArray &saved, const QList<Widget> &widgets)
{
    const auto flatten = [&widgets](const QByteArray &bytes) {
        const QpdfFile file(bytes);
        WorkingCopy::finish(file.pdf(), widgets);
        Flattening::apply(file.pdf());
        return file.write();
    };
    QByteArray flat = flatten(saved);
    QList<Widget> unread = ReadBack::unread(flat, widgets);
    // Other programs draw a list where it was scrolled to, and texts as they were some time ago.
    if (std::ranges::any_of(unread, std::not_fn(&Widget::changed))) {
        QList<Widget> places = widgets;
        PopplerForm anew(saved, places);
        anew.put(unread);
        flat = flatten(anew.bytes());
        unread = ReadBack::unread(flat, widgets);
    }
    if (!unread.isEmpty()) {
        throw ReadBack::refusal(unread);
    }
    return flat;
}

QByteArray QSPDFDocument::Private::file(bool flat) const
{
    try {
        return finished(flat);
    } catch (const QSError &) {
        throw;
    } catch (const std::exception &error) {
        throw QSError::invalid(u"The filled form could not be written: %1"_s.arg(
            QString::fromLocal8Bit(error.what())));
    }
}

std::shared_ptr<QSPDFDocument> QSPDFDocument::open(const QByteArray &bytes)
{
    std::shared_ptr<QSPDFDocument> document(
        new QSPDFDocument(std::make_unique<Private>(workingCopy(bytes))));
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

QImage QSPDFDocument::render(int page, double dotsPerInch, const QRect &clip,
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
    return d->file(false);
}

QByteArray QSPDFDocument::flattened() const
{
    return d->file(true);
}
