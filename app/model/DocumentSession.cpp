#include "DocumentSession.h"

void DocumentSession::setValue(const QString &key, const QString &value)
{
    if (value.isEmpty()) {
        m_document.values.remove(key);
    } else {
        m_document.values.insert(key, value);
    }
}

void DocumentSession::saved(const QSDocument &document)
{
    m_document = document;
    m_clean = document;
}

void DocumentSession::forgetSaved()
{
    m_document.id.reset();
    m_clean = QSDocument();
}

bool DocumentSession::hasUnsavedChanges() const
{
    return m_document.title != m_clean.title || m_document.values != m_clean.values;
}
