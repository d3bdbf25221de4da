#pragma once

#include "QSEntry.h"
#include "QSJurisdiction.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

/// The directory of official forms: six states and the federal government, as the resource file
/// "data/directory.json" gives them. A value; shared() is read once and never changes afterwards,
/// so any thread may read it.
///
/// Lookups of unknown codes and ids give nothing and never fail. Pointers returned point into this
/// directory.
struct QSDirectory
{
    /// A link to check, with a label for people.
    struct Link
    {
        QString label;
        QString url;
        bool skip = false;      ///< opens in a browser alone: its site may turn programs away
        bool expectPDF = false; ///< what answers has to be a PDF

        bool operator==(const Link &) const = default;
    };

    /// The states in the order of every list of states.
    static constexpr std::array<QStringView, 6> covered = {u"CO", u"CA", u"TX",
                                                           u"FL", u"NY", u"IL"};

    QString format;
    qint64 version = 0;
    QString checked; ///< "yyyy-MM-dd" on which the whole directory was last reviewed
    QString note;
    QList<QSJurisdiction> jurisdictions; ///< in file order
    QList<QSEntry> entries;              ///< in file order

    bool operator==(const QSDirectory &) const = default;

    /// Reads a directory file's bytes. All or nothing: a missing key, a wrong type or an unknown
    /// category or kind throws QSError::invalid saying where it is.
    [[nodiscard]] static QSDirectory decode(const QByteArray &json);
    /// The directory of the resource folder; an empty one when it could not be loaded.
    [[nodiscard]] static const QSDirectory &shared();
    /// Why shared() is empty; empty when all is well.
    [[nodiscard]] static const QString &loadError();
    /// The resource file's path; absent when the program has no resource folder.
    [[nodiscard]] static std::optional<QString> bundledURL();

    [[nodiscard]] const QSJurisdiction *jurisdiction(QStringView code) const;
    [[nodiscard]] const QSJurisdiction *federal() const;
    /// The covered states that the file has, in the order of covered.
    [[nodiscard]] QList<QSJurisdiction> states() const;
    [[nodiscard]] const QSEntry *entry(QStringView id) const;
    /// A state's entries, of one category or of all, in file order.
    [[nodiscard]] QList<QSEntry> entriesFor(QStringView state,
                                            std::optional<QSCategory> category = {}) const;
    /// The categories that a state has entries in, in the order of categories.
    [[nodiscard]] QList<QSCategory> categoriesFor(QStringView state) const;
    /// Every distinct link, under the first label that names it: entries, then jurisdictions.
    [[nodiscard]] QList<Link> allLinks() const;
    /// What is wrong with the directory, a line each, in the order of the file; empty when it is
    /// sound. Touches no network.
    [[nodiscard]] QStringList problems() const;
    /// True for an https link without blanks whose host has a dot inside.
    [[nodiscard]] static bool wellFormed(const QString &url);
};
