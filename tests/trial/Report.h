#pragma once

#include "Judges.h"

#include <QString>
#include <QStringList>

/// What came of one form.
struct FormReport
{
    QString name;
    int pages = 0;
    int fields = 0;
    bool opened = false;
    QString refusal;    ///< why it wasn't opened
    QString untouched;  ///< why nothing typed could not be flattened
    QStringList filled; ///< why it could not be flattened with answers
    Verdict verdict;

    /// One line: what was wrong, the first three things of each kind.
    [[nodiscard]] QString line() const;
    /// Everything that was wrong, a line each.
    [[nodiscard]] QString everything() const;
};

/// The counts over all forms.
class Totals final
{
public:
    void add(const FormReport &form);
    [[nodiscard]] QString line() const;
    /// True when nothing was wrong with any form; one that wasn't opened with a sentence is no
    /// failure.
    [[nodiscard]] bool areGood() const;

private:
    int m_forms = 0;
    int m_opened = 0;
    int m_untouched = 0;
    int m_filled = 0;
    int m_lost = 0;
    qsizetype m_notDrawn = 0;
    qsizetype m_readOtherwise = 0;
};
