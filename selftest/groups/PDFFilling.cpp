#include "Groups.h"
#include "QSError.h"
#include "QSPDF.h"
#include "QSTestRun.h"
#include "Sample.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString agree = u"agree"_s;

QString tickFor(const QString &word)
{
    const auto form = QSPDFDocument::open(QSPDF::practiceForm());
    QSPDF::fill(*form, {{agree, u"on"_s}});
    QSPDF::fill(*form, {{agree, word}});
    return QSPDF::values(*form).value(agree);
}

void checkFields(const QSPDFDocument &form, QSTestRun &run)
{
    const QList<FormField> &fields = QSPDF::widgets(form);
    const auto texts = std::ranges::count(fields, FormField::Kind::text, &FormField::kind);
    const auto boxes = std::ranges::count(fields, FormField::Kind::checkBox, &FormField::kind);
    run.check(fields.size() == 6 && texts == 5 && boxes == 1,
              u"the practice form has five text fields and a check box"_s);
    run.check(std::ranges::equal(fields, QSPDF::practiceFields, {}, &FormField::name),
              u"they have their names, in order"_s);
}

void checkFlattened(const QSPDFDocument &form, QSTestRun &run)
{
    const auto flat = QSPDFDocument::open(QSPDF::flatten(form));
    run.check(!QSPDF::isFillable(*flat), u"the flattened copy has no fields left"_s);
    QString page = flat->text(0);
    run.check(page.contains(u"VELL PRACTICE FORM"_s), u"it still shows the page"_s);
    bool once = true;
    for (const QString &value : Sample::practiceValues) {
        once = once && (value == u"on" || page.count(value) == 1);
    }
    run.check(once, u"it shows each typed value once"_s);
    const auto empty =
        QSPDFDocument::open(QSPDF::flatten(*QSPDFDocument::open(QSPDF::practiceForm())));
    const QRect box(200, 792 - 380 - 18, 18, 18); // at 72 dots per inch a dot is a point
    run.check(flat->render(0, 72, box).image != empty->render(0, 72, box).image,
              u"it shows the tick"_s);
}
} // namespace

void Groups::pdfFilling(QSTestRun &run)
{
    QSTestRun::begin(
        u"Fillable PDF: fill, save, reopen, flatten (on the app's own practice form)"_s);
    const auto form = QSPDFDocument::open(QSPDF::practiceForm());
    checkFields(*form, run);
    QSPDF::fill(*form, Sample::practiceValues);
    run.check(QSPDF::values(*form) == Sample::practiceValues,
              u"every field holds what was filled in"_s);
    run.attempt(u"saved and opened again, it holds the same"_s, [&] {
        return QSPDF::values(*QSPDFDocument::open(form->bytes())) == Sample::practiceValues;
    });
    run.attempt(u"\"yes\" ticks the box; \"Yes\" and \"1\" don't"_s, [] {
        return tickFor(u"yes"_s) == u"on" && tickFor(u"Yes"_s) == u"off" &&
               tickFor(u"1"_s) == u"off";
    });
    try {
        checkFlattened(*form, run);
    } catch (const QSError &error) {
        run.check(false, u"the form is flattened: "_s + error.description());
    }
    run.check(QSPDF::values(*form) == Sample::practiceValues,
              u"flattening leaves the open form as it was"_s);
    run.check(!QSPDFDocument::isPDF("<html>moved</html>"), u"a web page is no PDF"_s);
}
