#pragma once

#include "Drawings.h"
#include "PageText.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

/// What the judges found wrong with one form, a short sentence each.
struct Verdict
{
    QStringList lost;          ///< values or whole copies
    QStringList notDrawn;      ///< one for each answer
    QStringList readOtherwise; ///< one for each answer
    QStringList notes;         ///< what could not be judged, and counts as nothing

    void add(const Verdict &other);
};

/// Judges the files that a form's trial left, by programs that have nothing to do with this one:
/// qpdf, Poppler's tools, MuPDF and pdftk. One thread at a time.
class Judges final
{
public:
    /// untouched: the flat copy with nothing typed; it may be missing.
    Judges(const QString &original, const QString &untouched);

    /// The verdict on the untouched copy.
    [[nodiscard]] Verdict untouched() const;
    /// The verdict on the files of one pass, in its folder.
    [[nodiscard]] Verdict pass(const QString &folder, const QString &name) const;

private:
    [[nodiscard]] QString checked(const QString &pdf) const;

    QString m_untouched;
    int m_checkOfOriginal;
    QHash<PageText::Engine, QList<Drawing>> m_before; // the untouched copy's pages
};
