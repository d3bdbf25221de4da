#include "DocumentsView.h"

#include "AppModel.h"
#include "ExportMenu.h"
#include "RecordList.h"

#include <QFocusEvent>
#include <QTableView>
#include <QVBoxLayout>

#include <functional>

using namespace Qt::Literals::StringLiterals;

DocumentsView::DocumentsView(AppModel &model, QWidget *parent)
    : QWidget(parent),
      m_model(model),
      m_filledPDFs([&model](const QSFilledPDF &record) { return model.handOut(record); }),
      m_documentList(new RecordList(u"Filled Vell templates"_s, m_documents, this)),
      m_filledList(new RecordList(u"Filled official PDFs"_s, m_filledPDFs, this)),
      m_column(new QVBoxLayout(this))
{
    m_column->setContentsMargins({});
    m_column->setSpacing(fontMetrics().height());
    m_column->addWidget(m_documentList);
    m_column->addWidget(m_filledList);
    m_column->addStretch();
    connectDocuments();
    connectFilledPDFs();
    connect(&m_model, &AppModel::revisionChanged, this, [this] {
        m_outdated = true;
        if (isVisible()) {
            reload();
        }
    });
}

void DocumentsView::connectDocuments()
{
    const auto withSelected = [this](void (AppModel::*action)(const QSDocument &)) {
        return [this, action] {
            if (const auto document = selectedDocument()) {
                std::invoke(action, m_model, *document);
            }
        };
    };
    connect(m_documentList, &RecordList::openWanted, this, withSelected(&AppModel::edit));
    connect(m_documentList, &RecordList::printWanted, this, withSelected(&AppModel::print));
    connect(m_documentList, &RecordList::deleteWanted, this,
            withSelected(&AppModel::deleteDocument));
    ExportMenu::attach(m_documentList->exportButton(), this, [this](QSExport::Format format) {
        if (const auto document = selectedDocument()) {
            m_model.exportDocument(*document, format);
        }
    });
}

std::optional<QSDocument> DocumentsView::selectedDocument()
{
    const auto head = m_documents.recordAt(m_documentList->selectedRow());
    return head ? m_model.document(head->id) : std::nullopt;
}

void DocumentsView::connectFilledPDFs()
{
    // the record is a copy: the list is read anew meanwhile
    const auto withSelected = [this](void (AppModel::*action)(const QSFilledPDF &)) {
        return [this, action] {
            if (const auto record = m_filledPDFs.recordAt(m_filledList->selectedRow())) {
                std::invoke(action, m_model, *record);
            }
        };
    };
    connect(m_filledList, &RecordList::openWanted, this, withSelected(&AppModel::openSaved));
    connect(m_filledList, &RecordList::printWanted, this, withSelected(&AppModel::printFilledPDF));
    connect(m_filledList, &RecordList::deleteWanted, this,
            withSelected(&AppModel::deleteFilledPDF));
    ExportMenu::attachForForm(m_filledList->exportButton(), this, [this](AppModel::FormExport how) {
        if (const auto record = m_filledPDFs.recordAt(m_filledList->selectedRow())) {
            m_model.exportFilledPDF(*record, how);
        }
    });
}

void DocumentsView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (m_outdated) {
        reload();
    }
}

void DocumentsView::reload()
{
    const auto documents = m_model.documentHeads();
    m_documentList->refill(
        [&] { m_documents.setRecords(documents.value_or(QList<QSDocumentHead>())); },
        documents ? u"No documents yet. Start one from the Vell Templates screen."_s
                  : u"Your documents could not be read."_s);
    const auto filled = m_model.filledPDFs();
    m_filledList->refill(
        [&] { m_filledPDFs.setRecords(filled.value_or(QList<QSFilledPDF>())); },
        filled ? u"No filled PDFs yet. Open a fillable official form, fill it in, and choose Save "
                 "Filled Copy."_s
               : u"Your filled PDFs could not be read."_s);
    m_outdated = !documents || !filled;
    for (RecordList *list : {m_documentList, m_filledList}) { // an empty one leaves its room
        m_column->setStretchFactor(list, list->isEmpty() ? 0 : 1);
    }
}

void DocumentsView::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    const RecordList *first = m_documentList->isEmpty() ? m_filledList : m_documentList;
    if (!first->isEmpty()) {
        first->table()->setFocus(event->reason());
    }
}
