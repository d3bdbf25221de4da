#include "AppModel.h"

#include "AsyncTask.h"
#include "QSDesktop.h"
#include "QSDirectory.h"
#include "QSPrefs.h"
#include "QSProfile.h"
#include "QSStates.h"
#include "QSTemplates.h"

#include <QFileInfo>
#include <QSaveFile>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString cannotExport = u"This document could not be exported."_s;
const QString noStore = u"No documents database is open, so nothing can be saved."_s;

/// The path with the extension of its format, which a save panel need not have added.
QString withExtension(const QString &path, const QString &extension)
{
    return QFileInfo(path).suffix().compare(extension, Qt::CaseInsensitive) == 0
               ? path
               : path + u'.' + extension;
}
} // namespace

AppModel::AppModel(QSDesktop &desktop, QObject *parent)
    : QObject(parent),
      m_desktop(desktop),
      m_state(QSPrefs::homeState()),
      m_selectedTemplateID(u"bill-of-sale-vehicle"_s),
      m_showDisclaimer(!QSPrefs::disclaimerAccepted())
{
    if (QSStore *open = store()) {
        connect(open, &QSStore::revisionChanged, this, &AppModel::revisionChanged);
    }
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
    m_message = message;
    Q_EMIT messageChanged();
}

void AppModel::setBusy(const std::optional<QString> &text)
{
    m_busy = text;
    Q_EMIT busyChanged();
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
    QSPrefs::setDisclaimerAccepted(true);
    setShowDisclaimer(false);
}

template <typename Action>
bool AppModel::withStore(Action action)
{
    if (!store()) {
        setMessage(noStore);
        return false;
    }
    try {
        action(*store());
        return true;
    } catch (const QSError &error) {
        setMessage(error.description());
        return false;
    }
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
    document.created = QDateTime::currentDateTimeUtc();
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
}

void AppModel::setEditedTitle(const QString &title)
{
    if (m_editing) {
        m_editing->setTitle(title);
    }
}

void AppModel::setEditedValue(const QString &key, const QString &value)
{
    if (m_editing) {
        m_editing->setValue(key, value);
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
    Q_EMIT editedDocumentChanged();
}

bool AppModel::saveEdited()
{
    if (!m_editing) {
        return false;
    }
    const bool done =
        withStore([this](QSStore &open) { m_editing->saved(open.save(m_editing->document())); });
    if (done) {
        setMessage(u"Saved to My Documents."_s);
        Q_EMIT editedDocumentChanged();
    }
    return done;
}

AppModel::Answer AppModel::askToSave(const QString &name)
{
    static constexpr int cancelButton = 2;
    const int button = m_desktop.ask({u"Save changes to \"%1\""_s.arg(name),
                                      {},
                                      {u"Save"_s, u"Don't Save"_s, u"Cancel"_s},
                                      cancelButton});
    return static_cast<Answer>(button);
}

bool AppModel::closeEditor()
{
    if (!m_editing) {
        return true;
    }
    if (m_editing->hasUnsavedChanges()) {
        const Answer answer = askToSave(m_editing->document().title);
        if (answer == Answer::cancel || (answer == Answer::save && !saveEdited())) {
            return false;
        }
    }
    m_editing.reset();
    Q_EMIT editingChanged();
    return true;
}

// Documents

QList<QSDocument> AppModel::documents()
{
    QList<QSDocument> found;
    if (store()) {
        withStore([&found](QSStore &open) { found = open.documents(); });
    }
    return found;
}

void AppModel::deleteDocument(const QSDocument &document)
{
    static constexpr int deleteButton = 1;
    const int button = m_desktop.ask({u"Delete \"%1\""_s.arg(document.title),
                                      u"This can't be undone."_s,
                                      {u"Cancel"_s, u"Delete"_s},
                                      0});
    if (button == deleteButton && document.id) {
        withStore([&document](QSStore &open) { open.deleteDocument(*document.id); });
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

void AppModel::exportDocument(const QSDocument &document, QSExport::Format format)
{
    const std::optional<QSRendered> rendered = renderOrTell(document);
    if (!rendered || m_busy) {
        return;
    }
    const QSExport::FormatInfo &info = QSExport::info(format);
    const QString name = QSExport::safeFileName(document.title) + u'.' + info.extension.toString();
    setBusy(u"Making \"%1\"\u2026"_s.arg(name));
    AsyncTask::run<QByteArray>(
        this, [rendered = *rendered, format] { return QSExport::data(rendered, format); },
        [this, name](const AsyncTask::Outcome<QByteArray> &made) {
            setBusy(std::nullopt);
            if (made.result) {
                saveFile(*made.result, name);
            } else {
                qWarning("%s", made.error->what());
                setMessage(cannotExport);
            }
        });
}

void AppModel::saveFile(const QByteArray &data, const QString &suggestedName)
{
    const std::optional<QString> chosen = m_desktop.chooseSavePath(suggestedName);
    if (!chosen) {
        return;
    }
    const QString path = withExtension(*chosen, QFileInfo(suggestedName).suffix());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        qWarning("%s: %s", qUtf8Printable(path), qUtf8Printable(file.errorString()));
        setMessage(cannotExport);
        return;
    }
    setMessage(u"Saved "_s + QFileInfo(path).fileName());
}

void AppModel::print(const QSDocument &document)
{
    if (const std::optional<QSRendered> rendered = renderOrTell(document)) {
        try {
            m_desktop.print(*rendered);
        } catch (const QSError &error) {
            setMessage(error.description());
        }
    }
}

// Profile

QMap<QString, QString> AppModel::profile()
{
    if (m_profileEdits) {
        return *m_profileEdits;
    }
    QMap<QString, QString> saved;
    if (store()) {
        withStore([&saved](QSStore &open) { saved = open.profile(); });
    }
    return saved;
}

void AppModel::setProfileValue(const QString &key, const QString &value)
{
    QMap<QString, QString> edited = profile();
    if (edited.value(key) != value) {
        edited.insert(key, value);
        m_profileEdits = edited;
    }
}

bool AppModel::saveProfile()
{
    const QMap<QString, QString> edited = profile();
    const bool done = withStore([&edited](QSStore &open) { open.saveProfile(edited); });
    if (done) {
        m_profileEdits.reset();
        setMessage(u"Profile saved."_s);
    }
    return done;
}

// Search

QList<QSSearchHit> AppModel::hits()
{
    return store() ? store()->search(m_search) : QList<QSSearchHit>();
}

void AppModel::openHit(const QSSearchHit &hit)
{
    switch (hit.kind) {
    case QSSearchHit::Kind::document: {
        std::optional<QSDocument> document;
        if (withStore([&](QSStore &open) { document = open.document(hit.ref.toLongLong()); })) {
            if (document) {
                edit(*document);
            } else {
                setMessage(QSError::notFound().description());
            }
        }
        break;
    }
    case QSSearchHit::Kind::template_:
        if (show(Screen::templates)) {
            selectTemplate(hit.ref);
        }
        break;
    case QSSearchHit::Kind::form:
        if (const QSEntry *entry = QSDirectory::shared().entry(hit.ref)) {
            openOfficialPage(*entry);
        }
        break;
    }
}

void AppModel::openOfficialPage(const QSEntry &entry)
{
    m_desktop.openInBrowser(QUrl(entry.info.isEmpty() ? entry.url : entry.info));
}

bool AppModel::closeEverything()
{
    if (!closeEditor()) {
        return false;
    }
    if (hasUnsavedProfile()) {
        const Answer answer = askToSave(Screens::info(Screen::profile).title.toString());
        if (answer == Answer::cancel || (answer == Answer::save && !saveProfile())) {
            return false;
        }
        m_profileEdits.reset();
    }
    return true;
}
