#pragma once

#include "QSCategory.h"

#include <QString>

#include <optional>

/// One official form or link of the directory.
struct QSEntry
{
    QString id; ///< stable across versions: documents and link checks refer to entries by it
    QString j;  ///< jurisdiction code, "US" for federal
    QSCategory cat = QSCategory::llc;
    QString title;
    QString number; ///< the agency's form number; may be empty
    QString agency;
    QSKind kind = QSKind::page;
    bool fillable = false; ///< the official PDF has fields to fill
    QString url;
    QString info;                   ///< a second official page about the form; may be empty
    QString rev;                    ///< revision as the agency prints it; may be empty
    QString note;                   ///< in plain English; may be empty
    std::optional<QString> checked; ///< "yyyy-MM-dd" of its own hand check, else the directory's
    bool browserOnly = false;       ///< opened in the browser, never fetched by the program

    bool operator==(const QSEntry &) const = default;

    /// Number and title, or the title alone where the form has no number.
    [[nodiscard]] QString displayTitle() const;
    /// True for what opens in the browser alone and has no copy here.
    [[nodiscard]] bool opensInBrowser() const;
};
