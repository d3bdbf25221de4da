#pragma once

#include "DocumentsModel.h"
#include "FilledPDFsModel.h"

#include <QWidget>

#include <optional>

class AppModel;
class QVBoxLayout;
class RecordList;

/// My Documents: the saved documents, the filled copies of official forms, and what can be done
/// with the selected one of each. The lists are read from the store when they are first shown, and
/// again after a change, as soon as they are seen.
class DocumentsView final : public QWidget
{
    Q_OBJECT

public:
    explicit DocumentsView(AppModel &model, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    /// Hands the keyboard on to the first list; with a focus proxy Tab would pass over its buttons.
    void focusInEvent(QFocusEvent *event) override;

private:
    void connectDocuments();
    void connectFilledPDFs();
    /// Read whole, as it is saved now; absent, with a message, when it is gone.
    [[nodiscard]] std::optional<QSDocument> selectedDocument();
    void reload();

    AppModel &m_model;
    DocumentsModel m_documents;
    FilledPDFsModel m_filledPDFs;
    RecordList *m_documentList;
    RecordList *m_filledList;
    QVBoxLayout *m_column;
    bool m_outdated = true; ///< the lists are not what the store has
};
