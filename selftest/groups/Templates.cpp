#include "groups/Groups.h"

#include "QSProfile.h"
#include "QSTemplates.h"
#include "QSTestRun.h"
#include "Sample.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr std::array<QStringView, 12> shippedIDs = {u"bill-of-sale-vehicle",
                                                    u"bill-of-sale-general",
                                                    u"promissory-note",
                                                    u"residential-lease",
                                                    u"rent-receipt",
                                                    u"notice-to-vacate",
                                                    u"demand-letter",
                                                    u"general-release",
                                                    u"affidavit",
                                                    u"llc-operating-single",
                                                    u"power-of-attorney-general",
                                                    u"llc-operating-multi"};

const QString blank = u"________________"_s;

/// What somebody types into a field, and how it has to print. The "#" and "|" in texts must come
/// out as typed: they are marks only in the template's own text.
struct Answer
{
    QStringView typed;
    QStringView printed;
};

/// In the order of field kinds; the field's place in its template stands for %1.
constexpr std::array<Answer, 6> answers = {
    {{u" # Answer %1 | part two ", u"# Answer %1 | part two"},
     {u"| First line %1\n\n# Last line %1", u"| First line %1\n\n# Last line %1"},
     {u"2027-03-01", u"March 1, 2027"},
     {u"$1%1,500.5", u"$1%1,500.50"},
     {u"30%1", u"30%1"},
     {u"tx", u"Texas"}}};

/// Two digits, so that no answer is the beginning of another one.
QString with(QStringView answer, qsizetype place)
{
    return answer.toString().replace(u"%1"_s, u"%1"_s.arg(place, 2, 10, QChar(u'0')));
}

const Answer &answerTo(const QSField &field)
{
    return answers.at(static_cast<std::size_t>(field.kind));
}

QSValues answersTo(const QSTemplate &form)
{
    QSValues values;
    for (qsizetype place = 0; place < form.fields.size(); ++place) {
        const QSField &field = form.fields.at(place);
        values.insert(field.key, with(answerTo(field).typed, place));
    }
    return values;
}

void checkFilled(QSTestRun &run, const QSTemplate &form)
{
    const QString text = form.render(answersTo(form)).plainText();
    QStringList missing;
    for (qsizetype place = 0; place < form.fields.size(); ++place) {
        const QSField &field = form.fields.at(place);
        if (!text.contains(with(answerTo(field).printed, place))) {
            missing.append(field.key);
        }
    }
    run.check(!form.fields.isEmpty() && missing.isEmpty(),
              u"%1: all %2 answers print as typed %3"_s.arg(form.title)
                  .arg(form.fields.size())
                  .arg(missing.join(u", "_s))
                  .trimmed());
    run.check(!text.contains(u"{{"_s), form.title + u": no placeholder is left over"_s);
    run.check(text.endsWith(u"Template, not legal advice. Laws vary by state; review with an "
                            "attorney for important matters."_s),
              form.title + u": the template note closes the document"_s);
}

/// An empty document is the one filled with marks, with a blank for each of them.
void checkEmpty(QSTestRun &run, const QSTemplate &form)
{
    const QStringList keys = form.placeholderKeys();
    QSValues marks;
    for (const QString &key : keys) {
        marks.insert(key, u"<%1>"_s.arg(key));
    }
    QString expected = form.render(marks).plainText();
    for (const QString &mark : std::as_const(marks)) {
        expected.replace(mark, blank);
    }
    // a blank may make its line one to sign on, with room around it
    run.check(form.render({}).plainText().simplified() == expected.simplified(),
              u"%1: left empty, it has %2 blanks to write on"_s.arg(form.title).arg(keys.size()));
}

void checkProfile(QSTestRun &run, const QSTemplate &form)
{
    QSValues expected;
    for (const QSField &field : form.fields) {
        if (field.profileKey) {
            expected.insert(field.key, QSProfile::value(*field.profileKey, Sample::profile));
        }
    }
    const QSValues filled = form.profileValues(Sample::profile);
    const QString text = form.render(filled).plainText();
    run.check(!filled.isEmpty() && filled == expected && !filled.values().contains(QString()) &&
                  text.contains(Sample::profile.value(u"fullName"_s)),
              u"%1: the profile fills its %2 fields and no others"_s.arg(form.title)
                  .arg(expected.size()));
}

void checkLoading(QSTestRun &run)
{
    const QStringList &problems = QSTemplates::loadProblems();
    run.check(problems.isEmpty() &&
                  QSTemplates::all().size() == static_cast<qsizetype>(shippedIDs.size()),
              u"twelve templates load %1"_s.arg(problems.join(u"; "_s)).trimmed());
    for (QStringView id : shippedIDs) {
        run.check(QSTemplates::templateById(id), u"\"%1\" is in the catalogue"_s.arg(id));
    }
}
} // namespace

void Groups::templates(QSTestRun &run)
{
    QSTestRun::begin(u"Vell templates (load, fill, render with every field, no leftover "
                     "placeholders)"_s);
    checkLoading(run);
    for (const QSTemplate &form : QSTemplates::all()) {
        checkFilled(run, form);
        checkEmpty(run, form);
        checkProfile(run, form);
    }
}
