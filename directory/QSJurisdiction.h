#pragma once

#include "QSCategory.h"

#include <QList>
#include <QMap>
#include <QString>

#include <optional>

/// One legal-help resource of a state.
struct QSLegalAid
{
    QString title;
    QString url;
    QString kind;

    bool operator==(const QSLegalAid &) const = default;
};

/// A state's statutory power-of-attorney law.
struct QSPOA
{
    QString title;
    QString url;
    QString note;

    bool operator==(const QSPOA &) const = default;
};

/// A state, or the federal government (code "US").
struct QSJurisdiction
{
    QString code;
    QString name;
    QString selfHelp;               ///< the courts' self-help center
    QString courtForms;             ///< the courts' forms index
    QString courtFees;              ///< the official court fee schedule
    QString business;               ///< the business-filing office
    QString businessFees;           ///< its fee page
    QMap<QString, QString> offices; ///< category id to where its papers are filed
    std::optional<QSPOA> poa;       ///< absent for "US"
    QList<QSLegalAid> legalAid;     ///< in file order

    bool operator==(const QSJurisdiction &) const = default;

    /// Where the papers of a category are filed. A landlord's notice goes by the text of the
    /// tenant's answer where it has none of its own.
    [[nodiscard]] std::optional<QString> office(QSCategory category) const;
    /// Address of the official fee page for a category.
    [[nodiscard]] QString feePage(QSCategory category) const;
};
