#pragma once

#include "QSEntry.h"
#include "QSPDFDocument.h"
#include "QSStore.h"

#include <QUuid>

#include <memory>
#include <optional>

/// The PDF in the form window.
struct OpenPDF
{
    QUuid id = QUuid::createUuid(); ///< of this opening
    std::optional<QSEntry> entry; ///< absent for the practice form and where the directory lost it
    QString title;
    std::shared_ptr<QSPDFDocument> document; ///< never null
    std::optional<QSFilledPDF> saved;        ///< the filled copy that saving replaces
    QString status;                          ///< shown under the PDF
};

/// The form being filled in, and what its fields held when it was opened or last saved.
class FormSession final
{
public:
    explicit FormSession(const OpenPDF &opened);

    [[nodiscard]] const OpenPDF &form() const { return m_form; }
    [[nodiscard]] QSPDFDocument &document() const { return *m_form.document; }
    /// Entry id under which a filled copy is kept.
    [[nodiscard]] QString entryID() const;
    /// The title under which it is saved: that of the copy it came from, else a new one of today.
    [[nodiscard]] QString titleToSave() const;
    void setStatus(const QString &status) { m_form.status = status; }
    /// A copy with these values is in the store now; nothing is unsaved that was not typed since.
    void saved(const QSFilledPDF &record, const QList<FormValue> &values);
    /// What it holds is not in the store, whatever was typed since.
    void markUnsaved() { m_clean.clear(); }
    /// The copy that it came from is gone: all of it is unsaved, and the next save makes another.
    void forgetSaved();
    [[nodiscard]] bool hasUnsavedChanges() const;

private:
    OpenPDF m_form;
    QList<FormValue> m_clean;
};
