#pragma once

#include "Widget.h"

#include <QByteArray>
#include <QHash>
#include <QList>

#include <memory>
#include <vector>

class QPDF;
class QPDFObjectHandle;
class QpdfFile;

/// The drawings of fields as one PDF with a page for each, which widgets may share, and the way
/// from there into a form. All share their letters. One thread at a time.
class FieldDrawings final
{
public:
    /// Of those widgets whose drawing has something on it. Throws std::exception.
    explicit FieldDrawings(const QList<Widget> &widgets);
    ~FieldDrawings();
    Q_DISABLE_COPY_MOVE(FieldDrawings)

    [[nodiscard]] const QByteArray &pdf() const { return m_pdf; }
    /// The widget's page in pdf(), from 0; below zero when it has none.
    [[nodiscard]] int pageOf(int id) const { return m_pages.value(id, -1); }
    /// The widget's drawing as an appearance in the form; null when it has none. Always the same
    /// form.
    [[nodiscard]] QPDFObjectHandle appearance(QPDF &form, const Widget &widget) const;
    /// An appearance of no ink.
    [[nodiscard]] static QPDFObjectHandle nothing(QPDF &form);

private:
    QByteArray m_pdf;
    QHash<int, int> m_pages; ///< by widget's id
    std::unique_ptr<QpdfFile> m_file;
    std::vector<QPDFObjectHandle> m_objects; ///< the pages
};
