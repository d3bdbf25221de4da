#include "QSEntry.h"

QString QSEntry::displayTitle() const
{
    return number.isEmpty() ? title : number + QStringLiteral(" \u2014 ") + title;
}

bool QSEntry::opensInBrowser() const
{
    return browserOnly || !QSKinds::info(kind).downloads;
}
