#include "FormSession.h"

#include "QSClock.h"
#include "QSDate.h"

using namespace Qt::Literals::StringLiterals;

FormSession::FormSession(const OpenPDF &opened) : m_form(opened), m_clean(opened.document->values())
{
}

QString FormSession::entryID() const
{
    if (m_form.saved) {
        return m_form.saved->entryID;
    }
    return m_form.entry ? m_form.entry->id : u"practice"_s;
}

QString FormSession::titleToSave() const
{
    return m_form.saved
               ? m_form.saved->title
               : u"%1 (filled %2)"_s.arg(m_form.title, QSDate::longFormat(QSClock::today()));
}

void FormSession::saved(const QSFilledPDF &record, const QList<FormValue> &values)
{
    m_form.saved = record;
    m_clean = values;
}

void FormSession::forgetSaved()
{
    m_form.saved.reset();
    markUnsaved();
}

bool FormSession::hasUnsavedChanges() const
{
    return m_form.document->values() != m_clean;
}
