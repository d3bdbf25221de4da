#include "AppModel.h"

#include "OwnCopy.h"
#include "QSClock.h"
#include "QSDate.h"
#include "QSDesktop.h"
#include "QSDirectory.h"
#include "QSFile.h"
#include "QSPDF.h"

#include <QScopedValueRollback>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// An official form that was fetched, as it came off the network.
struct Fetched
{
    QSCache::Result copy;
    std::shared_ptr<QSPDFDocument> document; ///< null for a Word document and with a problem
    QString problem;
};

Fetched fetchForm(const QSEntry &entry, const std::stop_token &stop)
{
    Fetched form;
    form.copy = QSCache::obtain(entry, false, QSClock::now(), stop);
    if (entry.kind == QSKind::pdf) {
        try {
            form.document = QSPDFDocument::open(QSFile::read(form.copy.file), stop);
        } catch (const QSError &error) {
            form.problem = error.description();
        }
    }
    return form;
}

QSFilledPDF keepCopy(QSStore &store, const FormSession &session, const QByteArray &bytes)
{
    const QString title = session.titleToSave();
    try {
        return store.saveFilledPDF(session.entryID(), title, bytes, session.form().saved);
    } catch (const QSError &error) {
        if (error.errorCase() != QSError::Case::notFound) {
            throw;
        }
        // Its copy was deleted while it was open: what is typed here is kept all the same.
        return store.saveFilledPDF(session.entryID(), title, bytes);
    }
}
} // namespace

// Official forms

void AppModel::setFormCategory(std::optional<QSCategory> category)
{
    if (m_formCategory != category) {
        m_formCategory = category;
        Q_EMIT selectionChanged();
    }
}

void AppModel::selectEntry(const QString &id)
{
    if (m_selectedEntryID != id) {
        m_selectedEntryID = id;
        Q_EMIT selectionChanged();
    }
}

void AppModel::showEntry(const QString &id)
{
    const QSEntry *entry = QSDirectory::shared().entry(id);
    if (!entry || !show(Screen::forms)) {
        return;
    }
    setFormCategory(std::nullopt); // first, so that the list is never empty meanwhile
    if (std::ranges::find(QSDirectory::covered, entry->j) != QSDirectory::covered.end()) {
        setState(entry->j);
    }
    selectEntry(id);
}

void AppModel::open(const QSEntry &entry)
{
    if (entry.opensInBrowser()) {
        openLink(entry.url);
        return;
    }
    if (entry.id == m_gettingEntryID && !m_opening.stop_requested()) {
        return; // a second press: it would only begin its way again
    }
    if (m_openPDF && !m_openPDF->form().saved && m_openPDF->form().entry &&
        m_openPDF->form().entry->id == entry.id) {
        Q_EMIT openPDFWanted();
        return;
    }
    const std::stop_source stop = startOpening();
    m_gettingEntryID = entry.id;
    runBusy<Fetched>(
        u"Getting %1 from the official site\u2026"_s.arg(entry.displayTitle()), stop,
        [entry, stop](const AsyncTask::Progress &) { return fetchForm(entry, stop.get_token()); },
        [this, entry, stop](const AsyncTask::Outcome<Fetched> &form) {
            if (stop.stop_requested()) {
                return;
            }
            m_gettingEntryID.clear();
            if (form.error) {
                setMessage(form.error->description());
                return;
            }
            copiesChanged();
            whenNothingIsAsked([=, this] {
                if (!stop.stop_requested()) {
                    openCopy(entry, form.result->copy, form.result->document, form.result->problem);
                }
            });
        });
}

std::stop_source AppModel::startOpening()
{
    m_opening.request_stop();
    m_opening = std::stop_source();
    m_gettingEntryID.clear();
    return m_opening;
}

void AppModel::openCopy(const QSEntry &entry, const QSCache::Result &copy,
                        const std::shared_ptr<QSPDFDocument> &document, const QString &problem)
{
    if (document) {
        openSession({.entry = entry,
                     .title = entry.displayTitle(),
                     .document = document,
                     .saved = {},
                     .status = copy.message});
    } else if (entry.kind == QSKind::pdf) {
        setMessage(u"The downloaded file could not be opened as a PDF. "_s + problem);
    } else {
        openWordCopy(entry.displayTitle(), copy);
    }
}

void AppModel::openWordCopy(const QString &title, const QSCache::Result &official)
{
    try {
        const std::optional<QString> mine = OwnCopy::latest(title);
        const bool openMine =
            mine && (OwnCopy::isUnchanged(*mine, official.file) || prefersOwnCopy(title, *mine));
        const QString path = openMine ? *mine : OwnCopy::make(title, official.file);
        if (m_desktop.openFile(path)) {
            setMessage(u"%1 Your copy of it is %2"_s.arg(official.message, path));
        } else {
            setMessage(u"No program here opens Word documents. The form is at %1"_s.arg(path));
        }
    } catch (const QSError &error) {
        setMessage(u"No copy of the form could be made for you: "_s + error.description());
    }
}

bool AppModel::prefersOwnCopy(const QString &title, const QString &path)
{
    const QScopedValueRollback asking(m_asking, true);
    return m_desktop.ask(
               {u"You have a copy of \"%1\" that differs from the official file."_s.arg(title),
                u"It is %1. It was changed, or the official file was. A new copy gets a name of "
                "its own; yours stays as it is."_s.arg(path),
                {u"Open My Copy"_s, u"Open a New Copy"_s},
                0}) == 0;
}

void AppModel::recheck(const QSEntry &entry)
{
    const std::stop_source stop;
    runBusy<QString>(
        u"Checking the official site for a newer version\u2026"_s, stop,
        [entry, stop](const AsyncTask::Progress &) {
            const QDateTime now = QSClock::now();
            return QSCache::obtain(entry, true, now, stop.get_token()).message;
        },
        [this, stop](const AsyncTask::Outcome<QString> &checked) {
            if (stop.stop_requested()) {
                return;
            }
            setMessage(checked.result ? *checked.result : checked.error->description());
            copiesChanged();
        });
}

void AppModel::copiesChanged()
{
    if (store()) {
        store()->touch();
    } else {
        Q_EMIT revisionChanged();
    }
}

void AppModel::showSavedCopy(const QSEntry &entry)
{
    const QString path = QSCache::fileURL(entry);
    if (!m_desktop.showInFolder(path)) {
        setMessage(u"The file manager could not be opened. The copy is at %1"_s.arg(path));
    }
}

void AppModel::openOfficialPage(const QSEntry &entry)
{
    openLink(entry.info.isEmpty() ? entry.url : entry.info);
}

void AppModel::openLink(const QString &url)
{
    if (!QSDirectory::wellFormed(url)) { // another scheme would start a program of its own
        setMessage(u"This link is not a secure web page (https) and was not opened: %1"_s.arg(url));
    } else if (m_desktop.openInBrowser(QUrl(url))) {
        setMessage(u"Opened in your web browser."_s);
    } else {
        setMessage(u"The web browser could not be opened. The page is %1"_s.arg(url));
    }
}

std::optional<QSLinkCheck> AppModel::lastLinkCheck(const QSEntry &entry)
{
    if (!m_linkChecks) {
        m_linkChecks.emplace();
        if (store()) {
            withStore([this](QSStore &open) {
                for (const QSLinkCheck &check : open.linkChecks()) {
                    m_linkChecks->insert(check.url, check);
                }
            });
        }
    }
    const auto check = m_linkChecks->constFind(entry.url);
    return check == m_linkChecks->constEnd() ? std::nullopt : std::optional(*check);
}

QSStatus::S AppModel::linkStatus(const QSEntry &entry)
{
    return QSStatus::link(entry, lastLinkCheck(entry), QSClock::now());
}

QSStatus::Checked AppModel::lastChecked(const QSEntry &entry)
{
    return QSStatus::lastChecked(entry, lastLinkCheck(entry), QSClock::now());
}

// All links

void AppModel::checkAllLinks()
{
    using Checks = QList<QSLinkChecker::Check>;
    if (m_checking) {
        return;
    }
    const auto links = QSLinkChecker::bulkLinks(QSDirectory::shared());
    if (links.isEmpty()) {
        const QString &why = QSDirectory::loadError();
        setMessage(why.isEmpty() ? u"There are no official links to check."_s : why);
        return;
    }
    m_check = std::stop_source();
    m_checking = Progress{0, static_cast<int>(links.size())};
    Q_EMIT checkingChanged();
    AsyncTask::run<Checks>(
        this,
        [stop = m_check.get_token()](const AsyncTask::Progress &progress) {
            return QSLinkChecker::checkAll(QSDirectory::shared(), QSLinkChecker::parallelChecks,
                                           progress, stop);
        },
        [this](const AsyncTask::Outcome<Checks> &checks) {
            m_checking.reset();
            if (checks.result) {
                linksChecked(*checks.result);
            } else {
                setMessage(checks.error->description());
            }
            Q_EMIT checkingChanged();
        },
        [this](int done, int total) {
            m_checking = Progress{done, total};
            Q_EMIT checkingChanged();
        });
}

void AppModel::stopChecking()
{
    m_check.request_stop();
}

QString AppModel::recordChecks(const QList<QSLinkChecker::Check> &checks)
{
    const QDateTime now = QSClock::now();
    QList<QSLinkCheck> records;
    for (const QSLinkChecker::Check &check : checks) {
        records.append({.url = check.url,
                        .checked = now,
                        .status = check.status,
                        .ok = check.ok,
                        .finalURL = check.finalURL,
                        .contentType = check.contentType,
                        .note = check.note});
    }
    const bool done = withStore([&records](QSStore &open) { open.recordLinkChecks(records); });
    const QString failure = done ? QString() : m_message.value_or(QString());
    copiesChanged();
    return failure;
}

void AppModel::linksChecked(const QList<QSLinkChecker::Check> &checks)
{
    const bool anyAnswer = std::ranges::any_of(
        checks, [](const QSLinkChecker::Check &check) { return check.status != 0; });
    const QString failure = anyAnswer ? recordChecks(checks) : QString();
    const auto attention = std::ranges::count_if(checks, &QSLinkChecker::Check::needsAttention);
    QString text;
    if (m_check.stop_requested()) {
        text = u"The check was stopped after %1 links."_s.arg(checks.size());
    } else if (!anyAnswer) { // it is the network here that is broken, and not each of the links
        text = u"None of the official sites could be reached. Check your internet connection; no "
               "link was marked. Reason: %1."_s.arg(checks.value(0).note);
    } else if (attention > 0) {
        text = u"%1 of %2 official links need attention."_s.arg(attention).arg(checks.size());
        text += failure.isEmpty() ? u" They are marked on this screen."_s : QString();
    } else {
        text = u"All %1 official links answered. California court links are checked by hand "
               "(their terms don't allow automated checks)."_s.arg(checks.size());
    }
    if (!failure.isEmpty()) {
        text += u" The results could not be saved, so this screen does not show them. "_s + failure;
    }
    setMessage(text);
}

// The form in the form window

void AppModel::openSession(const OpenPDF &form)
{
    if (closeForm()) {
        setMessage(std::nullopt); // what was said before is of another form
        showSession(FormSession(form));
    }
}

void AppModel::showSession(const FormSession &session)
{
    m_openPDF = session;
    Q_EMIT openPDFChanged();
}

void AppModel::openPractice()
{
    (void)startOpening();
    try {
        openSession({.entry = {},
                     .title = u"Vell Practice Form"_s,
                     .document = QSPDFDocument::open(QSPDF::practiceForm()),
                     .saved = {},
                     .status = u"A practice form made by this app (not an official form)."_s});
    } catch (const QSError &error) {
        setMessage(error.description());
    }
}

void AppModel::setFormValue(int id, const FormValue &value)
{
    if (m_openPDF) {
        Q_EMIT formValuesChanged(m_openPDF->document().setValue(id, value));
        draftSoon();
    }
}

bool AppModel::saveForm()
{
    Q_EMIT editsWanted();
    if (!m_openPDF || m_saving) {
        return false;
    }
    const QScopedValueRollback saving(m_saving, true);
    const FormSession session = *m_openPDF; // typing goes on while its file is made
    const QList<FormValue> values = session.document().values();
    QByteArray bytes;
    QSFilledPDF record;
    const bool done = withStore([&](QSStore &) {
                          bytes = waitBusy<QByteArray>(
                              u"Saving \"%1\"\u2026"_s.arg(session.titleToSave()),
                              [document = session.form().document] { return document->bytes(); });
                      }) &&
                      withStore([&](QSStore &open) { record = keepCopy(open, session, bytes); });
    if (done && m_openPDF && m_openPDF->form().id == session.form().id) {
        m_openPDF->saved(record, values);
        m_openPDF->setStatus(u"Saved "_s + QSDate::stamp(record.modified));
        keepDrafts();
        setMessage(u"Saved to My Documents as \"%1\"."_s.arg(record.title));
        Q_EMIT formChanged();
    }
    return done;
}

void AppModel::exportForm(FormExport how)
{
    Q_EMIT editsWanted();
    if (m_openPDF) {
        exportPDF(m_openPDF->form().document, m_openPDF->form().title, how);
    }
}

void AppModel::exportPDF(const std::shared_ptr<QSPDFDocument> &document, const QString &title,
                         FormExport how)
{
    const QString name = QSExport::safeFileName(title) + u".pdf"_s;
    if (how == FormExport::flattened) {
        withFlatCopy(document, u"Making \"%1\"\u2026"_s.arg(name), u"Export Anyway"_s,
                     [this, name](const QByteArray &flat) { saveFile(flat, name); });
    } else {
        exportFile(
            name, [document](const std::stop_token &) { return document->bytes(); },
            &QSError::description);
    }
}

void AppModel::withFlatCopy(const std::shared_ptr<QSPDFDocument> &document, const QString &work,
                            const QString &anyway,
                            const std::function<void(const QByteArray &)> &use)
{
    using Copy = QSPDFDocument::FlatCopy;
    if (m_exporting) {
        setMessage(u"Another file is still being made. Try again when it is done."_s);
        return;
    }
    m_exporting = true;
    runBusy<Copy>(
        work, std::stop_source(std::nostopstate),
        [document](const AsyncTask::Progress &) { return document->flatCopy(); },
        [=, this](const AsyncTask::Outcome<Copy> &made) {
            m_exporting = false;
            if (made.error) {
                setMessage(made.error->description());
                return;
            }
            whenNothingIsAsked([=, this, copy = *made.result] {
                if (acceptsFaults(document, copy.faults, anyway)) {
                    use(copy.pdf);
                }
            });
        });
}

bool AppModel::acceptsFaults(const std::shared_ptr<QSPDFDocument> &document,
                             const QList<FormFault> &faults, const QString &anyway)
{
    if (faults.isEmpty()) {
        return true;
    }
    const bool isOpen = m_openPDF && m_openPDF->form().document == document;
    const QStringList buttons =
        isOpen ? QStringList{u"Show Me"_s, anyway, u"Cancel"_s} : QStringList{u"Cancel"_s, anyway};
    const auto answer = [&] {
        const QScopedValueRollback asking(m_asking, true);
        const auto cancel = static_cast<int>(buttons.indexOf(u"Cancel"_s));
        return m_desktop.ask(
            {FormFault::summary(faults), FormFault::sentence(faults), buttons, cancel});
    }();
    if (isOpen && answer == 0) {
        Q_EMIT fieldWanted(faults.constFirst().id);
    }
    return answer == 1;
}

void AppModel::printForm()
{
    Q_EMIT editsWanted();
    if (m_openPDF) {
        printPDF(m_openPDF->form().document, m_openPDF->form().title);
    }
}

std::optional<QString> AppModel::printPages(const QSPDFDocument &pages, const QString &title)
{
    const QScopedValueRollback asking(m_asking, true);
    return m_desktop.printPDF(pages, title);
}

void AppModel::printPDF(const std::shared_ptr<QSPDFDocument> &document, const QString &title)
{
    using Pages = std::shared_ptr<QSPDFDocument>;
    const auto print = [this, title](const std::function<Pages()> &pages) {
        try {
            tellOfPrinting(printPages(*pages(), title));
        } catch (const QSError &error) {
            setMessage(error.description());
        }
    };
    if (document->fields().isEmpty()) {
        print([document] { return document; });
        return;
    }
    const QString work = u"Preparing \"%1\" for the printer\u2026"_s.arg(title);
    withFlatCopy(document, work, u"Print Anyway"_s, [=, this](const QByteArray &flat) {
        print([=, this] {
            return waitBusy<Pages>(work, [flat] { return QSPDFDocument::open(flat); });
        });
    });
}

bool AppModel::closeForm()
{
    Q_EMIT editsWanted();
    if (!m_openPDF) {
        return true;
    }
    if (m_saving) { // whoever saves it goes on with it
        return false;
    }
    if (m_openPDF->hasUnsavedChanges()) {
        const Answer answer = askToSave(m_openPDF->form().title);
        // What is typed while the copy is made is not in it.
        const bool saved = answer == Answer::save && saveForm() && !m_openPDF->hasUnsavedChanges();
        if (answer != Answer::dontSave && !saved) {
            return false;
        }
    }
    dropForm();
    return true;
}

void AppModel::dropForm()
{
    m_openPDF.reset();
    keepDrafts();
    Q_EMIT openPDFChanged();
}
