#include "Opening.h"

#include "QSError.h"

#include <QLocale>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
[[noreturn]] void refuse(const QString &sentence, int limit)
{
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    throw QSError::invalid(sentence.arg(english.toString(limit)));
}
} // namespace

Opening::Opening(std::stop_token stop) : m_stop(std::move(stop)) {}

void Opening::goOn() const
{
    if (m_stop.stop_requested()) {
        throw QSError::invalid(u"The opening was stopped."_s);
    }
}

void Opening::countWidget()
{
    if (++m_widgets > mostWidgets) {
        refuse(u"This form has more than %1 fields, so it can't be opened here."_s, mostWidgets);
    }
    if (++m_onPage > mostWidgetsOnPage) {
        refuse(u"This form has more than %1 fields on one page, so it can't be opened here."_s,
               mostWidgetsOnPage);
    }
}

void Opening::countLetters(qsizetype letters)
{
    if (letters > mostLetters) {
        refuse(u"A field of this form holds more than %1 characters, so it can't be opened here."_s,
               mostLetters);
    }
    m_letters += letters;
    if (m_letters > mostLettersInAll) {
        refuse(u"This form's fields hold more than %1 characters, so it can't be opened here."_s,
               mostLettersInAll);
    }
}

void Opening::checkDepth(int depth) const
{
    if (depth > deepest) {
        refuse(u"This form's fields lie more than %1 deep in one another, so it can't be opened "
               "here."_s,
               deepest);
    }
}
