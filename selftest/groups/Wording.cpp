#include "groups/Groups.h"

#include "QSDisclaimer.h"
#include "QSFinder.h"
#include "QSInfo.h"
#include "QSTemplates.h"
#include "QSTestRun.h"
#include "VellAbout.h"
#include "VellHelp.h"

#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Some of the program's own words, and what they belong to.
struct Passage
{
    QString name;
    QStringList texts;
};

/// The maker's word is bare where it stands as a word of its own, in any case, without "Vell", the
/// name under which the maker signs, right before it.
const QString makerWord = u"Harrowby"_s;

/// Phrases that tell a person what to do about a legal matter, or what will come of it.
const QRegularExpression &advice()
{
    static const QRegularExpression pattern(
        uR"(\b(?:you (?:should|must|ought to|had better|have to|need to (?:file|sue|sign|hire))|)"
        uR"(you'd better|we (?:recommend|advise|suggest|urge|believe)|our (?:advice|recommendation)|)"
        uR"((?:is|are) (?:recommended|advised|advisable)|advise you|advised to|)"
        uR"((?:your|the) best (?:option|choice|bet|course)|it(?:'s| is) (?:best|better|wise) to|)"
        uR"(in your (?:case|situation), |you (?:will|would|can) win|your rights are|)"
        uR"(if I were you|legal advice from (?:us|our)|our (?:lawyers|attorneys))\b)"_s,
        QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

/// Legal advice may be spoken of only to say that there is none.
bool claimsAdvice(const QString &sentence)
{
    static const QRegularExpression denied(
        uR"(\b(?:no|not|nothing|never)\s+(?:\w+\s+){0,3}legal advice)"_s,
        QRegularExpression::CaseInsensitiveOption);
    return QString(sentence).remove(denied).contains(u"legal advice"_s, Qt::CaseInsensitive);
}

/// A line of the content is a whole paragraph.
QStringList sentences(const QString &text)
{
    static const QRegularExpression end(uR"((?<=[.!?])\s+|\n)"_s);
    return text.split(end, Qt::SkipEmptyParts);
}

/// The first sentence that gives advice; empty when there is none.
QString adviceIn(const Passage &passage)
{
    for (const QString &text : passage.texts) {
        for (const QString &sentence : sentences(text)) {
            if (sentence.contains(advice()) || claimsAdvice(sentence)) {
                return sentence;
            }
        }
    }
    return {};
}

bool hasBareMaker(const Passage &passage)
{
    static const QRegularExpression bare(uR"((?<!\bVell )\b%1\b)"_s.arg(makerWord),
                                         QRegularExpression::CaseInsensitiveOption);
    return passage.texts.join(u'\n').contains(bare);
}

Passage wordsOf(const QSTemplate &form)
{
    Passage words{form.title,
                  {form.title, form.category, form.summary, form.info, form.body, form.footer()}};
    for (const QSField &field : form.fields) {
        words.texts.append(field.label);
    }
    return words;
}

/// Titles of forms are the agencies' own words.
Passage wordsOf(const QSJurisdiction &place, const QSDirectory &directory)
{
    Passage words{u"Directory, "_s + place.name, place.offices.values()};
    if (place.poa) {
        words.texts.append(place.poa->note);
    }
    for (const QSLegalAid &aid : place.legalAid) {
        words.texts.append({aid.title, aid.kind});
    }
    for (const QSEntry &entry : directory.entriesFor(place.code)) {
        words.texts.append(entry.note);
    }
    return words;
}

Passage wordsOfFinder()
{
    Passage words{u"Guided finder"_s, {}};
    for (const QSTask &task : QSFinder::tasks) {
        words.texts.append({task.title, task.detail});
    }
    return words;
}

QList<Passage> everything()
{
    QList<Passage> passages;
    for (const QSTemplate &form : QSTemplates::all()) {
        passages.append(wordsOf(form));
    }
    const QSDirectory &directory = QSDirectory::shared();
    passages.append({u"Directory"_s, {directory.note}});
    for (const QSJurisdiction &place : directory.jurisdictions) {
        passages.append(wordsOf(place, directory));
    }
    for (const VellHelpTopic &topic : VellHelp::allTopics()) {
        passages.append({u"Help, "_s + topic.title, {topic.title, topic.body}});
    }
    passages.append(wordsOfFinder());
    passages.append({u"Disclaimer"_s, {QSDisclaimer::full, QSInfo::shortDisclaimer}});
    passages.append({u"About"_s,
                     {QSInfo::appName, VellAbout::version(), QSInfo::creditLine,
                      VellAbout::extraLines().join(u'\n'), VellAbout::copyrightLine()}});
    return passages;
}

/// The search itself: what it has to find, and what it has to let through.
void checkSearch(QSTestRun &run)
{
    const QStringList found = {u"You should file today."_s, u"First, we recommend form 12."_s,
                               u"It is best to settle."_s, u"Here you get legal advice."_s};
    for (const QString &text : found) {
        run.check(!adviceIn({{}, {text}}).isEmpty(), u"found as advice: "_s + text);
    }
    const QStringList fine = {u"Template, not legal advice."_s, u"It gives no legal advice."_s,
                              u"Nothing in it is legal advice."_s,
                              u"The tenant must answer within the time on the summons."_s};
    for (const QString &text : fine) {
        run.check(adviceIn({{}, {text}}).isEmpty(), u"no advice: "_s + text);
    }
    run.check(hasBareMaker({{}, {u"Made by %1."_s.arg(makerWord)}}) &&
                  !hasBareMaker({{}, {u"Made by Vell."_s}}),
              u"the maker's word is found where it stands alone"_s);
}
} // namespace

void Groups::wording(QSTestRun &run)
{
    QSTestRun::begin(u"Wording: no legal advice, no bare \"%1\""_s.arg(makerWord));
    checkSearch(run);
    for (const Passage &passage : everything()) {
        const QString found = hasBareMaker(passage) ? makerWord : adviceIn(passage);
        run.check(!passage.texts.isEmpty() && found.isEmpty(),
                  u"%1: wording %2"_s.arg(passage.name, found).trimmed());
    }
}
