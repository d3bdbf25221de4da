#include "QSTemplate.h"

#include "QSDate.h"
#include "QSDirections.h"
#include "QSInfo.h"
#include "QSMoney.h"
#include "QSMutation.h"
#include "QSProfile.h"
#include "QSStates.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Stands for an empty value: room to write by hand.
const QString blank = u"________________"_s;

const QRegularExpression &placeholder()
{
    static const QRegularExpression pattern(uR"(\{\{\s*([A-Za-z0-9_]+)\s*\}\})"_s);
    return pattern;
}

/// A body with its placeholders filled. The stencil has the text's length and shows "x" for each
/// typed character, so that the lines, marks and cells read off the stencil are the template's own.
struct FilledBody
{
    QString text;
    QString stencil;

    /// The text that a part of the stencil covers.
    [[nodiscard]] QString under(QStringView part) const
    {
        return text.sliced(part.data() - stencil.constData(), part.size());
    }
};

FilledBody fill(const QSTemplate &form, const QSValues &values)
{
    FilledBody filled;
    qsizetype end = 0;
    auto matches = placeholder().globalMatch(form.body);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QStringView own = QStringView(form.body).sliced(end, match.capturedStart() - end);
        const QString key = match.captured(1);
        const QSField *field = form.field(key);
        const QString shown = QSDirections::isolated(
            QSTemplate::display(field ? field->kind : QSFieldKind::text, values.value(key)));
        filled.text.append(own).append(shown);
        const bool showsMarks = shown == blank || QSMutation::on(u"typed-marks");
        filled.stencil.append(own).append(showsMarks ? shown : QString(shown.size(), u'x'));
        end = match.capturedEnd();
    }
    const QStringView rest = QStringView(form.body).sliced(end);
    filled.text.append(rest);
    filled.stencil.append(rest);
    return filled;
}

QStringList cells(const FilledBody &filled, QStringView line)
{
    QStringList found;
    for (const QStringView cell : line.tokenize(u'|')) {
        if (const QStringView trimmed = cell.trimmed(); !trimmed.isEmpty()) {
            found.append(filled.under(trimmed));
        }
    }
    return found;
}

/// The block that a line of the stencil makes by its mark; absent for a line of a paragraph.
std::optional<QSBlock> markedBlock(const FilledBody &filled, QStringView line)
{
    using Kind = QSBlock::Kind;
    if (line.startsWith(u"## ")) {
        return QSBlock{Kind::heading, {filled.under(line.sliced(3))}};
    }
    if (line.startsWith(u"# ")) {
        return QSBlock{Kind::title, {filled.under(line.sliced(2))}};
    }
    if (line.startsWith(u'|')) {
        return QSBlock{Kind::row, cells(filled, line)};
    }
    if (line.startsWith(u"______")) {
        return QSBlock{Kind::signature, {filled.under(line)}};
    }
    return std::nullopt;
}

QList<QSBlock> blocksOf(const FilledBody &filled)
{
    QList<QSBlock> blocks;
    QStringList paragraph;
    const auto flush = [&blocks, &paragraph] {
        if (!paragraph.isEmpty()) {
            blocks.append({QSBlock::Kind::paragraph, {paragraph.join(u'\n')}});
            paragraph.clear();
        }
    };
    for (const QStringView untrimmed : QStringView(filled.stencil).tokenize(u'\n')) {
        const QStringView line = untrimmed.trimmed();
        if (line.isEmpty()) {
            flush();
        } else if (const std::optional<QSBlock> block = markedBlock(filled, line)) {
            flush();
            blocks.append(*block);
        } else {
            paragraph.append(filled.under(line));
        }
    }
    flush();
    return blocks;
}
} // namespace

std::optional<QSFieldKind> fieldKind(QStringView word)
{
    const auto match = std::ranges::find(fieldKindWords, word);
    if (match == fieldKindWords.end()) {
        return std::nullopt;
    }
    return static_cast<QSFieldKind>(match - fieldKindWords.begin());
}

const QSField *QSTemplate::field(QStringView key) const
{
    const auto match =
        std::ranges::find_if(fields, [key](const QSField &each) { return each.key == key; });
    return match == fields.end() ? nullptr : &*match;
}

QStringList QSTemplate::placeholderKeys() const
{
    QStringList keys;
    auto matches = placeholder().globalMatch(body);
    while (matches.hasNext()) {
        keys.append(matches.next().captured(1));
    }
    return keys;
}

QSValues QSTemplate::profileValues(const QMap<QString, QString> &profile) const
{
    QSValues values;
    for (const QSField &each : fields) {
        const QString value =
            each.profileKey ? QSProfile::value(*each.profileKey, profile) : QString();
        if (!value.isEmpty()) {
            values.insert(each.key, value);
        }
    }
    return values;
}

QString QSTemplate::display(QSFieldKind kind, const QString &value)
{
    QString typed = value.trimmed();
    if (typed.isEmpty()) {
        return QSMutation::on(u"no-blanks") ? QString() : blank;
    }
    // Pasted text brings other systems' line ends along; printed lines end in "\n" alone.
    typed.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
    switch (kind) {
    case QSFieldKind::state:
        return QSStates::name(typed).value_or(typed);
    case QSFieldKind::money:
        return QSMoney::currency(typed).value_or(typed);
    case QSFieldKind::date:
        return QSDate::longText(typed);
    case QSFieldKind::text:
    case QSFieldKind::multiline:
    case QSFieldKind::number:
        break;
    }
    return typed;
}

QString QSTemplate::footer() const
{
    return u"Vell template \"%1\" (%2) version %3, %4. %5"_s.arg(
        title, id, version, QSDate::longText(date), QSInfo::templateNote);
}

QSRendered QSTemplate::render(const QSValues &values) const
{
    QSRendered rendered{title, blocksOf(fill(*this, values))};
    const auto heading = std::ranges::find(rendered.blocks, QSBlock::Kind::title, &QSBlock::kind);
    if (heading != rendered.blocks.end()) {
        rendered.title = heading->text().simplified().removeIf(QSDirections::isIsolate);
    }
    rendered.blocks.append({QSBlock::Kind::note, {footer()}});
    return rendered;
}
