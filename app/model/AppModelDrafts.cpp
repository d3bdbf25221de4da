#include "AppModel.h"

#include "QSDesktop.h"
#include "QSDirectory.h"
#include "QSDrafts.h"
#include "QSFile.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
std::shared_ptr<QSPDFDocument> openDraft(const QList<FormValue> &values)
{
    std::shared_ptr<QSPDFDocument> document =
        QSPDFDocument::open(QSFile::read(QSDrafts::formPDF()));
    const auto count = std::min(values.size(), document->fields().size());
    for (int id = 0; id < count; ++id) {
        if (document->value(id) != values.at(id)) {
            (void)document->setValue(id, values.at(id));
        }
    }
    return document;
}
} // namespace

void AppModel::startDrafts()
{
    const QScopedValueRollback starting(m_starting, true);
    offerProfileDraft();
    offerDocumentDraft();
    const auto form = draft(QSDrafts::Kind::form, u"What was typed into a form"_s, QSDrafts::form);
    if (!form || !askToReopen(form->title)) {
        beginDrafting();
        return;
    }
    using Document = std::shared_ptr<QSPDFDocument>;
    runBusy<Document>(
        u"Opening \"%1\"\u2026"_s.arg(form->title), std::stop_source(std::nostopstate),
        [values = form->values](const AsyncTask::Progress &) { return openDraft(values); },
        [this, draft = *form, stop = startOpening()](const AsyncTask::Outcome<Document> &opened) {
            whenNothingIsAsked([=, this] { formDraftOpened(draft, opened, stop); });
        });
}

void AppModel::beginDrafting()
{
    if (m_drafting == Drafting::later) {
        m_drafting = Drafting::on;
        keepDrafts();
    }
}

template <typename Draft>
std::optional<Draft> AppModel::draft(QSDrafts::Kind kind, const QString &what,
                                     std::optional<Draft> (*read)())
{
    try {
        return read();
    } catch (const QSError &error) {
        setAside(kind, what, error.description());
        return std::nullopt;
    }
}

void AppModel::setAside(QSDrafts::Kind kind, const QString &what, const QString &why)
{
    try {
        setMessage(u"%1 could not be opened again: %2 It is kept in %3"_s.arg(
            what, why, QSDrafts::setAside(kind)));
    } catch (const QSError &error) { // it is still where the next draft would be kept
        m_drafting = Drafting::off;
        cannotDraft(error);
    }
}

void AppModel::formDraftOpened(const FormDraft &draft,
                               const AsyncTask::Outcome<std::shared_ptr<QSPDFDocument>> &opened,
                               const std::stop_source &stop)
{
    const QScopedValueRollback starting(m_starting, true);
    const std::optional<QString> standing = std::exchange(m_message, std::nullopt);
    const bool reopened = opened.result && reopenForm(draft, *opened.result, stop);
    const std::optional<QString> news = std::exchange(m_message, standing);
    if (!reopened) {
        setAside(QSDrafts::Kind::form, u"What was typed into \"%1\""_s.arg(draft.title),
                 opened.error ? opened.error->description() : news.value_or(QString()));
    } else if (news) {
        setMessage(news);
    }
    beginDrafting();
}

bool AppModel::askToReopen(const QString &name)
{
    const QScopedValueRollback asking(m_asking, true);
    return m_desktop.ask({u"\"%1\" was not saved when the program last ended."_s.arg(name),
                          u"What was typed into it is still there, except perhaps for the last "
                          "few seconds."_s,
                          {u"Open It Again"_s, u"Delete It"_s},
                          0}) == 0;
}

void AppModel::offerProfileDraft()
{
    const auto kept = draft(QSDrafts::Kind::profile, u"What was typed on the My Profile screen"_s,
                            QSDrafts::profile);
    if (kept && *kept != savedProfile()) {
        m_profileEdits = kept;
        setMessage(u"What was typed on the My Profile screen and not saved is still there, except "
                   "perhaps for the last few seconds."_s);
        Q_EMIT profileEdited();
    }
}

void AppModel::offerDocumentDraft()
{
    std::optional<QSDocument> kept =
        draft(QSDrafts::Kind::document, u"What was typed into a document"_s, QSDrafts::document);
    if (!kept) {
        return;
    }
    std::optional<QSDocument> saved;
    if (kept->id) {
        withStore([&](QSStore &open) { saved = open.document(*kept->id); });
    }
    if (!saved) {
        kept->id.reset(); // its record is gone; saving makes another
    }
    const DocumentSession session(*kept, saved.value_or(QSDocument()));
    if (session.hasUnsavedChanges() && askToReopen(kept->title)) {
        m_editing = session;
        Q_EMIT editingChanged();
    }
}

bool AppModel::reopenForm(const FormDraft &draft, const std::shared_ptr<QSPDFDocument> &document,
                          const std::stop_source &stop)
{
    const QSEntry *entry = QSDirectory::shared().entry(draft.entryID);
    OpenPDF form{.entry = entry ? std::optional(*entry) : std::nullopt,
                 .title = draft.title,
                 .document = document,
                 .saved = {},
                 .status = u"Not saved yet"_s};
    for (const QSFilledPDF &copy : filledPDFs().value_or(QList<QSFilledPDF>())) {
        if (copy.id == draft.savedID) {
            form.saved = copy;
        }
    }
    FormSession session(form);
    session.markUnsaved();
    if (!stop.stop_requested() && closeForm()) {
        showSession(session);
        m_draftedForm = form.id;
        return true;
    }
    const bool saved = withStore([&](QSStore &open) {
        open.saveFilledPDF(draft.entryID, session.titleToSave(), document->bytes());
    });
    if (saved) {
        QSDrafts::dropForm();
        setMessage(u"What was typed into \"%1\" was saved to My Documents."_s.arg(draft.title));
    }
    return saved;
}

void AppModel::draftSoon()
{
    static constexpr std::chrono::milliseconds pause{700};    // after the last key
    static constexpr std::chrono::milliseconds longest{3000}; // while somebody types on
    if (m_drafting != Drafting::on) {
        return;
    }
    if (!m_draftTimer.isActive()) {
        m_undrafted.start();
    }
    const std::chrono::milliseconds left =
        longest - std::chrono::milliseconds(m_undrafted.elapsed());
    m_draftTimer.start(std::clamp(left, std::chrono::milliseconds(0), pause));
}

void AppModel::keepDrafts()
{
    m_draftTimer.stop();
    if (m_drafting != Drafting::on) {
        return;
    }
    try {
        if (m_profileEdits) {
            QSDrafts::keepProfile(*m_profileEdits);
        } else {
            QSDrafts::dropProfile();
        }
        if (m_editing && m_editing->hasUnsavedChanges()) {
            QSDrafts::keepDocument(m_editing->document());
        } else {
            QSDrafts::dropDocument();
        }
        if (m_openPDF && m_openPDF->hasUnsavedChanges()) {
            keepFormDraft();
        } else {
            m_draftedForm = QUuid();
            QSDrafts::dropForm();
        }
    } catch (const QSError &error) {
        cannotDraft(error);
    }
}

void AppModel::keepFormDraft()
{
    const OpenPDF &form = m_openPDF->form();
    if (m_draftedForm == form.id) {
        QSDrafts::keepForm({.entryID = m_openPDF->entryID(),
                            .title = form.title,
                            .savedID = form.saved ? form.saved->id : std::nullopt,
                            .values = form.document->values()});
        return;
    }
    if (std::exchange(m_keepingFormPDF, true)) {
        return; // done when that one is there
    }
    // The file is made once, away from the main thread; after it only the values are written.
    AsyncTask::run<QUuid>(
        this,
        [id = form.id, document = form.document] {
            QSDrafts::keepFormPDF(document->bytes());
            return id;
        },
        [this](const AsyncTask::Outcome<QUuid> &kept) {
            m_keepingFormPDF = false;
            if (kept.error) {
                cannotDraft(*kept.error);
                return;
            }
            if (m_openPDF && m_openPDF->form().id == *kept.result) {
                m_draftedForm = *kept.result;
            }
            keepDrafts();
        });
}

void AppModel::cannotDraft(const QSError &error)
{
    if (!std::exchange(m_toldOfDrafts, true)) {
        setMessage(
            u"What you type is in memory alone until you save it: %1"_s.arg(error.description()));
    }
}
