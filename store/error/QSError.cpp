#include "QSError.h"

using namespace Qt::Literals::StringLiterals;

QSError::QSError(Case errorCase, const QString &payload)
    : m_case(errorCase), m_payload(payload), m_what(description().toUtf8())
{
}

QSError QSError::database(const QString &text)
{
    return {Case::database, text};
}

QSError QSError::invalid(const QString &text)
{
    return {Case::invalid, text};
}

QSError QSError::badBackup(const QString &text)
{
    return {Case::badBackup, text};
}

QSError QSError::network(const QString &text)
{
    return {Case::network, text};
}

QSError QSError::io(const QString &text)
{
    return {Case::io, text};
}

QSError QSError::notFound()
{
    return {Case::notFound, {}};
}

QString QSError::description() const
{
    switch (m_case) {
    case Case::database:
        return u"The database reported a problem: "_s + m_payload;
    case Case::badBackup:
        return u"This file can't be restored: "_s + m_payload;
    case Case::notFound:
        return u"That record no longer exists."_s;
    case Case::invalid:
    case Case::network:
    case Case::io:
        break;
    }
    return m_payload;
}
