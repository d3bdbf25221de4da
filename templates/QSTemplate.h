#pragma once

#include "QSRendered.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

/// A document's answers: field key to the text the user typed.
using QSValues = QMap<QString, QString>;

/// How a field's value is edited and printed.
enum class QSFieldKind { text, multiline, date, money, number, state };

/// The kinds in their order; the position is the kind's number.
inline constexpr std::array<QStringView, 6> fieldKindWords = {u"text",  u"multiline", u"date",
                                                              u"money", u"number",    u"state"};
/// The kind that a word of a template file names; absent for any other word.
[[nodiscard]] std::optional<QSFieldKind> fieldKind(QStringView word);

/// One blank of a template.
struct QSField
{
    QString key;   ///< placeholder in the body, key in a document's values
    QString label; ///< shown in the editor
    QSFieldKind kind = QSFieldKind::text;
    std::optional<QString> profileKey; ///< key of QSProfile that fills the field first
    bool required = false;             ///< marked with "*" in the editor

    bool operator==(const QSField &) const = default;
};

/// A plain-English document template, as one file of the resources gives it. A value; the
/// catalogue (QSTemplates) owns the shipped ones. Any thread.
struct QSTemplate
{
    QString id;
    QString title;
    QString category; ///< "General" when the file gives none
    QString version;
    QString date; ///< as the file writes it, normally "yyyy-MM-dd"
    QString summary;
    QString keywords;
    QString info; ///< the "Good to know" note
    QList<QSField> fields;
    QString body; ///< text with {{key}} placeholders
    QString fileName;

    bool operator==(const QSTemplate &) const = default;

    /// Reads a template file's text, with or without a byte order mark and with either kind of line
    /// end. Throws QSError::invalid with the file's name and what is wrong: no line "===" between
    /// header and body, a field line that can't be read, or an id, title, version or date that is
    /// missing or empty.
    [[nodiscard]] static QSTemplate parse(const QString &text, const QString &fileName);

    /// First field with that key; null when there is none.
    [[nodiscard]] const QSField *field(QStringView key) const;
    /// The keys of the body's placeholders, in order of appearance, repeats included.
    [[nodiscard]] QStringList placeholderKeys() const;
    /// Field key to value, for every field that the profile can fill with a text that is not empty.
    [[nodiscard]] QSValues profileValues(const QMap<QString, QString> &profile) const;

    /// How one value prints: sixteen underscores for an empty one, else by its kind. What can't be
    /// read as its kind prints as typed, without the blanks around it.
    [[nodiscard]] static QString display(QSFieldKind kind, const QString &value);
    /// The closing note of every rendered template.
    [[nodiscard]] QString footer() const;
    /// The filled template; never fails. A placeholder without a field prints the value of that
    /// key as text. The title is that of the body's first title block, in one line, or else the
    /// template's. The last block is the footer.
    ///
    /// Only the template's own text decides where a block or a cell begins and of which kind it is.
    /// Nor does a typed name in Arabic or Hebrew, or a control of direction, turn what follows it:
    /// such a value is isolated. What was typed always prints whole, where its placeholder stands:
    /// a typed "#" or "|" is no mark, and typed lines, empty ones included, stay lines of that one
    /// block (so a cell may hold
    /// "\n" too). The underscores of an empty value count as the template's own: at the start of a
    /// line they make it a signature line.
    [[nodiscard]] QSRendered render(const QSValues &values) const;
};
