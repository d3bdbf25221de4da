#pragma once

#include "QSDirectory.h"
#include "QSTemplate.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// An everyday legal task that someone may have to do.
struct QSTask
{
    QString id;
    QString title;
    QString detail;               ///< one line under the title
    QString symbol;               ///< name of the symbol image
    QList<QSCategory> categories; ///< of the directory, state and federal ones in any order
    QStringList templates;        ///< ids of the catalogue

    bool operator==(const QSTask &) const = default;
};

/// The paperwork of one task in one state. A value of its own: it outlives the directory.
struct QSFinderResult
{
    /// Where the papers of a category are filed.
    struct Office
    {
        QSCategory category;
        QString text;

        bool operator==(const Office &) const = default;
    };
    /// An official page that tells what filing costs.
    struct FeePage
    {
        QString label;
        QString url;

        bool operator==(const FeePage &) const = default;
    };

    QSTask task;
    QSJurisdiction state;
    QList<QSEntry> forms; ///< the state's, by the task's order of categories, then in file order
    QList<QSEntry> federalForms; ///< in the same order
    QList<QSTemplate> templates; ///< in the task's order
    QList<Office> offices;       ///< the state's, then the federal ones
    QList<FeePage> feePages;     ///< business, court, USCIS, IRS; only those that apply
    QString selfHelp;            ///< address of the state's self-help center
    QList<QSLegalAid> legalAid;  ///< as QSFinder::legalAid() lists it
    std::optional<QSPOA> poa;    ///< the state's law, for the power-of-attorney task alone

    bool operator==(const QSFinderResult &) const = default;
};

/// Answers what paperwork goes with a task in a state. Without state of its own; any thread.
namespace QSFinder {
/// Every task, in the order shown.
extern const QList<QSTask> tasks;
/// Null when there is no task of that id.
[[nodiscard]] const QSTask *task(QStringView id);
/// The state's legal aid, then the federal one whose addresses are not among it; the latter alone
/// for an unknown code.
[[nodiscard]] QList<QSLegalAid> legalAid(QStringView state,
                                         const QSDirectory &dir = QSDirectory::shared());
/// Everything that the directory and the catalogue have for the task. Absent when the directory
/// has no jurisdiction of that code; what is missing otherwise (the federal jurisdiction, entries,
/// an office, a fee page, a template) is left out.
[[nodiscard]] std::optional<QSFinderResult> result(const QSTask &task, QStringView state,
                                                   const QSDirectory &dir = QSDirectory::shared());
} // namespace QSFinder
