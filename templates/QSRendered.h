#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// One piece of a rendered document.
struct QSBlock
{
    enum class Kind { title, heading, paragraph, row, signature, note };

    Kind kind = Kind::paragraph;
    QStringList cells; ///< the cells of a row; one text for every other kind

    bool operator==(const QSBlock &) const = default;

    /// The block's text; a row's cells are joined by four spaces.
    [[nodiscard]] QString text() const;
};

/// A filled template: what the preview, printing and every export draw from.
struct QSRendered
{
    QString title;
    QList<QSBlock> blocks;

    bool operator==(const QSRendered &) const = default;

    /// The texts of all blocks with a blank line between them.
    [[nodiscard]] QString plainText() const;
};
