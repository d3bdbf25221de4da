#pragma once

#include "Answered.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

/// The fields of a PDF as pdftk reads them: by name, what each field of that name holds.
class FieldData final
{
public:
    /// Nothing when pdftk can't read the file.
    [[nodiscard]] static std::optional<FieldData> of(const QString &pdf);

    /// What the fields of this name hold; empty when there is none.
    [[nodiscard]] QStringList valuesOf(const QString &name) const;

private:
    void add(const QString &line);
    void addRecord();

    QString m_name; // of the record that is being read
    QString m_value;
    bool m_inValue = false;
    QHash<QString, QStringList> m_values;
};
