#include "DocxText.h"
#include "Groups.h"
#include "QSError.h"
#include "QSExport.h"
#include "QSPDFDocument.h"
#include "QSTemplates.h"
#include "QSTestRun.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// A short one, a long one and one with most of its answers in tables.
constexpr std::array<QStringView, 3> samples = {u"rent-receipt", u"residential-lease",
                                                u"bill-of-sale-vehicle"};

/// Something to type into a field: different for each, so that none can stand in for another.
QString typed(const QSField &field, qsizetype number)
{
    switch (field.kind) {
    case QSFieldKind::date:
        return u"2027-%1-%2"_s.arg(1 + number / 28 % 12, 2, 10, QChar(u'0'))
            .arg(1 + number % 28, 2, 10, QChar(u'0'));
    case QSFieldKind::money:
    case QSFieldKind::number:
        return QString::number(7000 + number);
    case QSFieldKind::state:
        return u"CO"_s;
    case QSFieldKind::text:
    case QSFieldKind::multiline:
        break;
    }
    return u"Answer%1"_s.arg(number, 3, 10, QChar(u'0'));
}

/// A template with every field filled in, and how the answers print.
struct Filled
{
    QSRendered rendered;
    QStringList answers;
};

Filled filled(QStringView id)
{
    const QSTemplate *form = QSTemplates::templateById(id);
    if (form == nullptr) {
        throw QSError::invalid(u"the template %1 is missing from the app"_s.arg(id));
    }
    Filled result;
    QSValues values;
    const QStringList printed = form->placeholderKeys();
    for (const QSField &field : form->fields) {
        const QString value = typed(field, values.size());
        values.insert(field.key, value);
        if (printed.contains(field.key)) {
            result.answers.append(QSTemplate::display(field.kind, value));
        }
    }
    result.rendered = form->render(values);
    return result;
}

bool holdsAll(const QString &text, const QStringList &answers)
{
    const QString flowing = text.simplified(); // an answer may go over a line's end
    return !answers.isEmpty() && std::ranges::all_of(answers, [&](const QString &answer) {
        return flowing.contains(answer);
    });
}

void checkPDF(QStringView id, QSTestRun &run)
{
    const Filled sample = filled(id);
    const auto pdf = QSPDFDocument::open(QSExport::pdf(sample.rendered));
    const int pages = pdf->pageCount();
    bool numbered = pages > 0;
    QString text;
    for (int page = 0; page < pages; ++page) {
        const QString footer = u"Page %1 of %2"_s.arg(page + 1).arg(pages);
        QString all = pdf->text(page);
        numbered = numbered && all.contains(footer) && pdf->pageSize(page) == QSizeF(612, 792);
        text += all.remove(footer) + u'\n';
    }
    const QString name = sample.rendered.title;
    run.check(holdsAll(text, sample.answers),
              u"PDF of \"%1\": every answer can be read on its pages"_s.arg(name));
    run.check(text.simplified().endsWith(sample.rendered.blocks.last().text()),
              u"PDF of \"%1\": the note that it is no legal advice ends it"_s.arg(name));
    run.check(numbered,
              u"PDF of \"%1\": all %2 pages are US Letter and numbered"_s.arg(name).arg(pages));
}

void checkOffice(QSTestRun &run)
{
    const Filled sample = filled(samples.back());
    const QString note = sample.rendered.blocks.last().text();
    run.attempt(u"Word: the document holds every answer and ends with the note"_s, [&] {
        const QString text = DocxText::of(QSExport::docx(sample.rendered));
        return holdsAll(text, sample.answers) && text.trimmed().endsWith(note);
    });
    run.attempt(u"Rich Text: the document holds every answer and the note"_s, [&] {
        const QString text = QString::fromLatin1(QSExport::rtf(sample.rendered));
        return holdsAll(text, sample.answers + QStringList(note));
    });
}
} // namespace

void Groups::exports(QSTestRun &run)
{
    QSTestRun::begin(u"Export: PDF, Word (.docx) and RTF"_s);
    for (const QStringView id : samples) {
        try {
            checkPDF(id, run);
        } catch (const QSError &error) {
            run.check(false, u"PDF of %1: %2"_s.arg(id, error.description()));
        }
    }
    run.check(QSExport::safeFileName(u"A/B: C?"_s) == u"A-B- C-" &&
                  QSExport::safeFileName(u"   "_s) == u"Document",
              u"a document's name becomes a name for its file"_s);
    checkOffice(run);
}
