#include "AppModel.h"

#include "QSClock.h"
#include "QSDesktop.h"
#include "QSDirectory.h"
#include "QSFile.h"
#include "QSMutation.h"
#include "QSPageLayout.h"
#include "QSPrefs.h"
#include "QSProfile.h"
#include "QSStates.h"
#include "QSTemplates.h"

#include <QFileInfo>
#include <QScopedValueRollback>
#include <QTimer>

#include <algorithm>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace {
QString cannotExport(const QSError &error)
{
    return u"This document could not be exported. "_s + error.description();
}
} // namespace

AppModel::AppModel(QSDesktop &desktop, QObject *parent)
    : QObject(parent),
      m_desktop(desktop),
      m_state(QSPrefs::homeState()),
      m_selectedTemplateID(u"bill-of-sale-vehicle"_s),
      m_showDisclaimer(!QSPrefs::disclaimerAccepted() && !QSMutation::on(u"disclaimer-stays-away"))
{
    m_draftTimer.setSingleShot(true);
    connect(&m_draftTimer, &QTimer::timeout, this, &AppModel::keepDrafts);
    hearStore();
}

AppModel::~AppModel()
{
    m_check.request_stop();
    for (Work &work : m_works) {
        work.stop.request_stop();
    }
}

void AppModel::hearStore()
{
    if (QSStore *open = store()) {
        connect(open, &QSStore::revisionChanged, this, &AppModel::storeChanged,
                Qt::UniqueConnection);
    }
}

void AppModel::storeChanged()
{
    m_linkChecks.reset();
    Q_EMIT revisionChanged();
}

void AppModel::storeReplaced()
{
    hearStore();
    if (m_editing && m_editing->document().id && !document(*m_editing->document().id)) {
        m_editing->forgetSaved();
    }
    if (m_openPDF && m_openPDF->form().saved) {
        const QList<QSFilledPDF> copies = filledPDFs().value_or(QList<QSFilledPDF>());
        const auto isOpen = [this](const QSFilledPDF &copy) {
            return copy.id == m_openPDF->form().saved->id;
        };
        if (std::ranges::none_of(copies, isOpen)) {
            m_openPDF->forgetSaved();
            Q_EMIT formChanged();
        }
    }
    storeChanged();
}

bool AppModel::show(Screen screen)
{
    if (!closeEditor()) {
        return false;
    }
    setSearch({});
    if (m_screen != screen) {
        m_screen = screen;
        Q_EMIT screenChanged();
    }
    return true;
}

void AppModel::setState(const QString &code)
{
    m_state = code;
    QSPrefs::setHomeState(code);
    Q_EMIT selectionChanged();
}

void AppModel::setFinderTask(const QString &id)
{
    if (m_finderTaskID != id) {
        m_finderTaskID = id;
        Q_EMIT selectionChanged();
    }
}

void AppModel::selectTemplate(const QString &id)
{
    if (m_selectedTemplateID != id) {
        m_selectedTemplateID = id;
        Q_EMIT selectionChanged();
    }
}

void AppModel::setSearch(const QString &text)
{
    if (m_search != text) {
        m_search = text;
        Q_EMIT searchChanged();
    }
}

void AppModel::setMessage(const std::optional<QString> &message)
{
    const bool adds = m_starting && message && m_message;
    if (!adds) {
        m_message = message;
    } else if (!m_message->contains(*message)) {
        m_message = *m_message + u'\n' + *message;
    }
    Q_EMIT messageChanged();
}

void AppModel::tellOfStart(const QString &problem)
{
    if (!store()) {
        m_withoutStore = problem;
    }
    const QScopedValueRollback starting(m_starting, true);
    setMessage(problem);
}

void AppModel::setShowDisclaimer(bool shown)
{
    if (m_showDisclaimer != shown) {
        m_showDisclaimer = shown;
        Q_EMIT showDisclaimerChanged();
    }
}

void AppModel::acceptDisclaimer()
{
    if (!QSMutation::on(u"acceptance-forgotten")) {
        QSPrefs::setDisclaimerAccepted(true);
    }
    setShowDisclaimer(false);
}

// The document in the editor

void AppModel::newDocument(const QSTemplate &source)
{
    if (!closeEditor()) {
        return;
    }
    const QMap<QString, QString> known = profile();
    QSDocument document;
    document.templateID = source.id;
    document.templateVersion = source.version;
    document.title = source.title;
    document.values = source.profileValues(known);
    document.state = QSStates::code(QSProfile::value(u"state", known)).value_or(m_state);
    document.created = QSClock::now();
    document.modified = document.created;
    selectTemplate(source.id);
    openSession(document);
}

void AppModel::edit(const QSDocument &document)
{
    if (closeEditor()) {
        openSession(document);
    }
}

void AppModel::openSession(const QSDocument &document)
{
    setSearch({});
    m_editing.emplace(document);
    Q_EMIT editingChanged();
    (void)renderOrTell(document);
}

void AppModel::setEditedTitle(const QString &title)
{
    if (m_editing) {
        m_editing->setTitle(title);
        draftSoon();
    }
}

void AppModel::setEditedValue(const QString &key, const QString &value)
{
    if (m_editing) {
        m_editing->setValue(key, value);
        draftSoon();
    }
}

void AppModel::fillFromProfile()
{
    const QSTemplate *source =
        m_editing ? QSTemplates::templateById(m_editing->document().templateID) : nullptr;
    if (!source) {
        return;
    }
    const QMap<QString, QString> known = profile();
    const bool anything =
        std::ranges::any_of(known, [](const QString &value) { return !value.trimmed().isEmpty(); });
    if (!anything) {
        setMessage(u"The profile is empty. Fill it in on the My Profile screen."_s);
        return;
    }
    const QSValues fresh = source->profileValues(known);
    for (auto value = fresh.cbegin(); value != fresh.cend(); ++value) {
        if (m_editing->document().values.value(value.key()).trimmed().isEmpty()) {
            m_editing->setValue(value.key(), value.value());
        }
    }
    draftSoon();
    Q_EMIT editedDocumentChanged();
}

void AppModel::exportEdited(QSExport::Format format)
{
    Q_EMIT editsWanted();
    if (m_editing) {
        exportDocument(m_editing->document(), format);
    }
}

void AppModel::printEdited()
{
    Q_EMIT editsWanted();
    if (m_editing) {
        print(m_editing->document());
    }
}

bool AppModel::saveEdited()
{
    Q_EMIT editsWanted();
    if (!m_editing) {
        return false;
    }
    const bool done =
        withStore([this](QSStore &open) { m_editing->saved(open.save(m_editing->document())); });
    if (done) {
        keepDrafts();
        setMessage(u"Saved to My Documents."_s);
        Q_EMIT editedDocumentChanged();
    }
    return done;
}

AppModel::Answer AppModel::askToSave(const QString &name)
{
    static constexpr int cancelButton = 2;
    if (m_asking) { // a second wish to close while the first one's question stands
        return Answer::cancel;
    }
    const QScopedValueRollback asking(m_asking, true);
    const int button = m_desktop.ask({u"Save changes to \"%1\""_s.arg(name),
                                      {},
                                      {u"Save"_s, u"Don't Save"_s, u"Cancel"_s},
                                      cancelButton});
    return static_cast<Answer>(button);
}

bool AppModel::closeEditor()
{
    Q_EMIT editsWanted();
    if (!m_editing) {
        return true;
    }
    if (m_editing->hasUnsavedChanges()) {
        const Answer answer = askToSave(m_editing->document().title);
        if (answer == Answer::cancel || (answer == Answer::save && !saveEdited())) {
            return false;
        }
    }
    dropEdited();
    return true;
}

void AppModel::dropEdited()
{
    m_editing.reset();
    keepDrafts();
    Q_EMIT editingChanged();
}

// Documents

std::optional<QList<QSDocument>> AppModel::documents()
{
    std::optional<QList<QSDocument>> found;
    withStore([&found](QSStore &open) { found = open.documents(); });
    return found;
}

std::optional<QList<QSDocumentHead>> AppModel::documentHeads()
{
    std::optional<QList<QSDocumentHead>> found;
    withStore([&found](QSStore &open) { found = open.documentHeads(); });
    return found;
}

std::optional<QSDocument> AppModel::document(qint64 id)
{
    std::optional<QSDocument> found;
    if (withStore([&](QSStore &open) { found = open.document(id); }) && !found) {
        setMessage(QSError::notFound().description());
    }
    return found;
}

bool AppModel::agrees(const QString &text, const QString &detail, const QString &action)
{
    static constexpr int actionButton = 1;
    const QScopedValueRollback asking(m_asking, true);
    return m_desktop.ask({text, detail, {u"Cancel"_s, action}, 0}) == actionButton;
}

bool AppModel::askToDelete(const QString &name)
{
    return agrees(u"Delete \"%1\""_s.arg(name), u"This can't be undone."_s, u"Delete"_s);
}

void AppModel::deleteDocument(const QSDocument &document)
{
    if (askToDelete(document.title) && document.id &&
        withStore([&document](QSStore &open) { open.deleteDocument(*document.id); })) {
        setMessage(u"\"%1\" was deleted."_s.arg(document.title));
    }
}

std::optional<QSRendered> AppModel::render(const QSDocument &document)
{
    const QSTemplate *source = QSTemplates::templateById(document.templateID);
    if (!source) {
        return std::nullopt;
    }
    QSRendered rendered = source->render(document.values);
    if (const QString name = document.title.trimmed(); !name.isEmpty()) {
        rendered.title = name;
    }
    return rendered;
}

std::optional<QSRendered> AppModel::renderOrTell(const QSDocument &document)
{
    std::optional<QSRendered> rendered = render(document);
    if (!rendered) {
        setMessage(
            u"The template %1 is not in this version of the app."_s.arg(document.templateID));
    }
    return rendered;
}

bool AppModel::acceptsMissingLetters(const QSRendered &rendered, const QString &anyway)
{
    static constexpr qsizetype mostShown = 40;
    QSPageLayout layout;
    layout.update(rendered);
    QStringList letters;
    for (const char32_t letter : layout.missingCharacters().toStdU32String()) {
        letters.append(QString::fromUcs4(&letter, 1));
    }
    if (letters.isEmpty()) {
        return true;
    }
    if (letters.size() > mostShown) {
        letters = letters.first(mostShown) << u"\u2026"_s;
    }
    return agrees(u"These letters can't be printed here: "_s + letters.join(u' '),
                  u"No font on this computer has them. Their places would be empty or boxes."_s,
                  anyway);
}

void AppModel::exportDocument(const QSDocument &document, QSExport::Format format)
{
    const std::optional<QSRendered> rendered = renderOrTell(document);
    if (!rendered) {
        return;
    }
    // Word processors have fonts of their own.
    if (format == QSExport::Format::pdf && !acceptsMissingLetters(*rendered, u"Export Anyway"_s)) {
        return;
    }
    const QSExport::FormatInfo &info = QSExport::info(format);
    exportFile(
        QSExport::safeFileName(document.title) + u'.' + info.extension.toString(),
        [rendered = *rendered, format](const std::stop_token &stop) {
            return QSExport::data(rendered, format, stop);
        },
        cannotExport);
}

void AppModel::exportFile(const QString &name,
                          const std::function<QByteArray(const std::stop_token &)> &make,
                          const std::function<QString(const QSError &)> &failure)
{
    if (m_exporting) {
        setMessage(u"Another file is still being made. Try again when it is done."_s);
        return;
    }
    m_exporting = true;
    const std::stop_source stop;
    runBusy<QByteArray>(
        u"Making \"%1\"\u2026"_s.arg(name), stop,
        [make, stop](const AsyncTask::Progress &) { return make(stop.get_token()); },
        [this, name, failure, stop](const AsyncTask::Outcome<QByteArray> &made) {
            m_exporting = false;
            if (stop.stop_requested()) {
                return;
            }
            if (made.result) {
                whenNothingIsAsked([=, this] { saveFile(*made.result, name); });
            } else {
                qWarning("%s", made.error->what());
                setMessage(failure(*made.error));
            }
        });
}

std::optional<QString> AppModel::chooseSavePath(const QString &suggestedName)
{
    const QScopedValueRollback asking(m_asking, true);
    return m_desktop.chooseSavePath(suggestedName);
}

void AppModel::saveFile(const QByteArray &data, const QString &suggestedName)
{
    const std::optional<QString> path = chooseSavePath(suggestedName);
    if (!path) {
        return;
    }
    try {
        QSFile::write(*path, data);
        setMessage(u"Saved "_s + QFileInfo(*path).fileName());
    } catch (const QSError &error) {
        qWarning("%s: %s", qUtf8Printable(*path), error.what());
        setMessage(cannotExport(error));
    }
}

void AppModel::print(const QSDocument &document)
{
    const std::optional<QSRendered> rendered = renderOrTell(document);
    if (rendered && acceptsMissingLetters(*rendered, u"Print Anyway"_s)) {
        const QScopedValueRollback asking(m_asking, true);
        try {
            tellOfPrinting(m_desktop.print(*rendered));
        } catch (const QSError &error) {
            setMessage(error.description());
        }
    }
}

void AppModel::tellOfPrinting(const std::optional<QString> &where)
{
    if (where) {
        setMessage(where->isEmpty() ? u"Sent to the printer."_s
                                    : u"Saved "_s + QFileInfo(*where).fileName());
    }
}

// Search

QList<QSSearchHit> AppModel::hits()
{
    return store() ? store()->search(m_search) : QList<QSSearchHit>();
}

void AppModel::openHit(const QSSearchHit &hit)
{
    switch (hit.kind) {
    case QSSearchHit::Kind::document:
        openDocument(hit.ref.toLongLong());
        break;
    case QSSearchHit::Kind::template_:
        if (show(Screen::templates)) {
            selectTemplate(hit.ref);
        }
        break;
    case QSSearchHit::Kind::form:
        showEntry(hit.ref);
        break;
    }
}

void AppModel::openDocument(qint64 id)
{
    // read only now that the editor is closed: it may have been this one, saved on closing
    if (!closeEditor()) {
        return;
    }
    if (const std::optional<QSDocument> saved = document(id)) {
        openSession(*saved);
    }
}

bool AppModel::closeEverything()
{
    Q_EMIT editsWanted();
    if (m_saving) {
        return false;
    }
    // Every question comes before anything is dropped, so that a late "Cancel" cancels it all.
    std::vector<std::function<bool()>> saves;
    const auto settled = [&](bool unsaved, const QString &name, const std::function<bool()> &save) {
        const Answer answer = unsaved ? askToSave(name) : Answer::dontSave;
        if (answer == Answer::save) {
            saves.push_back(save);
        }
        return answer != Answer::cancel;
    };
    if (!settled(m_openPDF && m_openPDF->hasUnsavedChanges(),
                 m_openPDF ? m_openPDF->form().title : QString(),
                 [this] { return saveForm() && !m_openPDF->hasUnsavedChanges(); }) ||
        !settled(m_editing && m_editing->hasUnsavedChanges(),
                 m_editing ? m_editing->document().title : QString(),
                 [this] { return saveEdited(); }) ||
        !settled(hasUnsavedProfile(), Screens::info(Screen::profile).title.toString(),
                 [this] { return saveProfile(); }) ||
        !std::ranges::all_of(saves, [](const auto &save) { return save(); })) {
        return false;
    }
    m_profileEdits.reset();
    keepDrafts();
    if (m_editing) {
        dropEdited();
    }
    if (m_openPDF) {
        dropForm();
    }
    return true;
}
