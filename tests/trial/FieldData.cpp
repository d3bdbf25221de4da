#include "FieldData.h"

#include "Programs.h"

#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Some count the parts of a name that are empty, some don't.
QString withoutEmptyParts(const QString &name)
{
    return name.split(u'.', Qt::SkipEmptyParts).join(u'.');
}
} // namespace

std::optional<FieldData> FieldData::of(const QString &pdf)
{
    const Programs::Output output =
        Programs::run(u"pdftk"_s, {pdf, u"dump_data_fields_utf8"_s, u"output"_s, u"-"_s});
    if (!output.isGood()) {
        return std::nullopt;
    }
    FieldData data;
    const QString text =
        QString::fromUtf8(output.text).replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    for (const QString &line : text.split(u'\n')) {
        data.add(line);
    }
    data.addRecord();
    return data;
}

/// A line that begins with no key goes on with the value above it. pdftk gives the values that
/// stand above a field in the tree of fields first, and the field's own last.
void FieldData::add(const QString &line)
{
    static const QRegularExpression key(u"^Field[A-Z][A-Za-z]*: ?"_s);
    const QString named = u"FieldName: "_s;
    const QString valued = u"FieldValue: "_s;
    if (line == u"---") {
        addRecord();
    } else if (line.startsWith(named)) {
        m_name = line.mid(named.size());
    } else if (line.startsWith(valued)) {
        m_value = line.mid(valued.size());
        m_inValue = true;
        return;
    } else if (m_inValue && !key.match(line).hasMatch()) {
        m_value += u'\n' + line;
        return;
    }
    m_inValue = false;
}

void FieldData::addRecord()
{
    if (!m_name.isEmpty()) {
        m_values[withoutEmptyParts(m_name)].append(m_value);
    }
    m_name.clear();
    m_value.clear();
    m_inValue = false;
}

QStringList FieldData::valuesOf(const QString &name) const
{
    return m_values.value(withoutEmptyParts(name));
}
