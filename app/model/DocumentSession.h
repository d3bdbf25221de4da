#pragma once

#include "QSStore.h"

#include <optional>

/// The document that is open in the editor, and how it stood when it was last saved or opened.
/// A value; its owner decides when to save.
class DocumentSession final
{
public:
    explicit DocumentSession(const QSDocument &opened) : m_document(opened), m_clean(opened) {}
    /// A document that was typed into and not saved since it stood as in the second.
    DocumentSession(const QSDocument &typed, const QSDocument &saved)
        : m_document(typed), m_clean(saved)
    {
    }

    [[nodiscard]] const QSDocument &document() const { return m_document; }
    void setTitle(const QString &title) { m_document.title = title; }
    /// An empty value is the same as none.
    void setValue(const QString &key, const QString &value);
    /// Takes what the store made of the document; nothing is unsaved afterwards.
    void saved(const QSDocument &document);
    /// Its record is gone: all of it is unsaved, and the next save makes another.
    void forgetSaved();
    /// True when the title or an answer differs from what is saved. A new document that was only
    /// pre-filled has none.
    [[nodiscard]] bool hasUnsavedChanges() const;

private:
    QSDocument m_document;
    QSDocument m_clean;
};
