#pragma once

#include "AsyncTask.h"
#include "DocumentSession.h"
#include "FormSession.h"
#include "QSCache.h"
#include "QSDrafts.h"
#include "QSExport.h"
#include "QSLinkChecker.h"
#include "QSStatus.h"
#include "Screen.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QString>
#include <QTemporaryDir>
#include <QTimer>

#include <optional>
#include <stop_token>

class QSDesktop;
struct QSEntry;
struct QSTemplate;

/// The one model behind the main window: what is shown and selected, and every action that a
/// button or menu item calls. It knows no widget; what it needs of the desktop it asks of its port.
///
/// Main thread only. Work that takes long runs on a pool and comes back queued. No failure gets
/// past the model: each becomes the message.
class AppModel final : public QObject
{
    Q_OBJECT

public:
    /// How far a work has got.
    struct Progress
    {
        int done = 0;
        int total = 0; ///< 0 where nobody knows
    };
    /// The two ways a filled form is handed over as a file.
    enum class FormExport { flattened, editable };

    /// The desktop has to live as long as the model.
    explicit AppModel(QSDesktop &desktop, QObject *parent = nullptr);
    /// Stops what runs on the network; nobody hears of it any more.
    ~AppModel() override;

    /// The program's store; null when no database could be opened.
    [[nodiscard]] static QSStore *store() { return QSStore::shared(); }
    /// To be called when another store took the place of the program's one: from here on the model
    /// hears that one. What is open and has no record there counts as never saved.
    void storeReplaced();

    [[nodiscard]] Screen screen() const { return m_screen; }
    /// Shows a screen. With a document in the editor that is closed first, which the user can
    /// refuse; returns whether the screen is shown.
    bool show(Screen screen);
    /// Code of the chosen jurisdiction.
    [[nodiscard]] const QString &state() const { return m_state; }
    /// Chooses a jurisdiction and remembers it in the preferences.
    void setState(const QString &code);
    /// Id of the task chosen in the finder; absent while none is.
    [[nodiscard]] const std::optional<QString> &finderTaskID() const { return m_finderTaskID; }
    void setFinderTask(const QString &id);
    [[nodiscard]] const QString &selectedTemplateID() const { return m_selectedTemplateID; }
    void selectTemplate(const QString &id);
    [[nodiscard]] const QString &search() const { return m_search; }
    void setSearch(const QString &text);
    [[nodiscard]] const std::optional<QString> &message() const { return m_message; }
    void setMessage(const std::optional<QString> &message);
    /// Tells what went wrong when the program started. What startDrafts() has to say is added to
    /// it, and it is told again when something is to be saved and no database is open.
    void tellOfStart(const QString &problem);
    /// Text of the operation that was begun last of those that run; absent when none runs.
    [[nodiscard]] std::optional<QString> busy() const;
    /// How far that operation has got.
    [[nodiscard]] Progress busyProgress() const;
    /// Whether that operation can be ended, and was not yet told to.
    [[nodiscard]] bool canStopBusy() const;
    /// Ends that operation, which leaves everything as it was.
    void stopBusy();
    [[nodiscard]] bool showDisclaimer() const { return m_showDisclaimer; }
    void setShowDisclaimer(bool shown);
    /// The user has read the disclaimer; it does not come up by itself again.
    void acceptDisclaimer();

    // The document in the editor
    /// Absent while the editor is closed.
    [[nodiscard]] const std::optional<DocumentSession> &editing() const { return m_editing; }
    /// Opens a new, unsaved document of a template, filled from the profile. An open document is
    /// closed first, which the user can refuse; so too in edit().
    void newDocument(const QSTemplate &source);
    void edit(const QSDocument &document);
    void setEditedTitle(const QString &title);
    void setEditedValue(const QString &key, const QString &value);
    /// Fills the fields that are still empty from the profile.
    void fillFromProfile();
    /// Saves the open document; false with a message when that fails.
    bool saveEdited();
    /// The open document, as it stands, to a file or to paper.
    void exportEdited(QSExport::Format format);
    void printEdited();
    /// Closes the editor; with unsaved changes it asks. False when the user stays.
    bool closeEditor();

    // Documents
    /// Absent, with a message, when they can't be read.
    [[nodiscard]] std::optional<QList<QSDocument>> documents();
    /// The same, of each only what a list shows: thousands are read at once.
    [[nodiscard]] std::optional<QList<QSDocumentHead>> documentHeads();
    /// Absent, with a message, when it can't be read or is gone.
    [[nodiscard]] std::optional<QSDocument> document(qint64 id);
    /// Deletes after asking.
    void deleteDocument(const QSDocument &document);
    /// Makes the file in the background, then asks where to put it. One at a time: while one is
    /// being made, another is refused with a message.
    void exportDocument(const QSDocument &document, QSExport::Format format);
    void print(const QSDocument &document);
    /// The filled template under the document's name; absent when this version of the program lacks
    /// the template.
    [[nodiscard]] static std::optional<QSRendered> render(const QSDocument &document);

    // Profile
    /// The answers as last edited, saved or not.
    [[nodiscard]] QMap<QString, QString> profile();
    /// Does nothing, with a message, while the saved profile can't be read.
    void setProfileValue(const QString &key, const QString &value);
    bool saveProfile();
    [[nodiscard]] bool hasUnsavedProfile() const { return m_profileEdits.has_value(); }

    // Official forms
    /// The category that the forms screen shows alone; absent for all.
    [[nodiscard]] std::optional<QSCategory> formCategory() const { return m_formCategory; }
    void setFormCategory(std::optional<QSCategory> category);
    [[nodiscard]] const std::optional<QString> &selectedEntryID() const
    {
        return m_selectedEntryID;
    }
    void selectEntry(const QString &id);
    /// Opens a form: in the browser where it is no file, else its copy, fetched if need be, in the
    /// form window (of a Word document the person's own copy, in the desktop's program). The form
    /// that is open stays until then. Of two forms opened one after the other, the later one is
    /// shown; one that is on its way already goes on.
    void open(const QSEntry &entry);
    /// Asks the form's site whether there is a newer version.
    void recheck(const QSEntry &entry);
    /// Shows the saved copy of an entry in the file manager.
    void showSavedCopy(const QSEntry &entry);
    /// The official page about a form, or the form itself where the directory has no page, in the
    /// browser.
    void openOfficialPage(const QSEntry &entry);
    /// Opens an official page in the browser; the message names the page when there is no browser.
    void openLink(const QString &url);
    /// Shows an entry on the forms screen, of its state.
    void showEntry(const QString &id);
    [[nodiscard]] QSStatus::S linkStatus(const QSEntry &entry);
    [[nodiscard]] QSStatus::Checked lastChecked(const QSEntry &entry);
    /// Asks every official link that may be asked automatically. Does nothing while a check runs.
    void checkAllLinks();
    /// Ends a running check; what was answered by then counts.
    void stopChecking();
    /// Absent while no check runs.
    [[nodiscard]] const std::optional<Progress> &checking() const { return m_checking; }

    // The form in the form window
    /// Absent while the form window is closed.
    [[nodiscard]] const std::optional<FormSession> &openPDF() const { return m_openPDF; }
    void openPractice();
    /// Opens a filled copy again. When it can't be read, the form window stays as it is.
    void openSaved(const QSFilledPDF &record);
    /// Sets a field's value; formValuesChanged() tells which fields look different now.
    void setFormValue(int id, const FormValue &value);
    /// Keeps a filled copy in My Documents; false with a message when that fails.
    bool saveForm();
    void exportForm(FormExport how);
    void printForm();
    /// Closes the form window; with unsaved changes it asks. False when the user stays.
    bool closeForm();

    // Filled PDFs
    /// Absent, with a message, when they can't be read.
    [[nodiscard]] std::optional<QList<QSFilledPDF>> filledPDFs();
    /// Deletes after asking.
    void deleteFilledPDF(const QSFilledPDF &record);
    void exportFilledPDF(const QSFilledPDF &record, FormExport how);
    void printFilledPDF(const QSFilledPDF &record);
    /// Path of a copy of the filled PDF under its own name, for other programs to take; empty, with
    /// a message, when there is none. It goes with the program.
    [[nodiscard]] QString handOut(const QSFilledPDF &record);

    // Search
    [[nodiscard]] QList<QSSearchHit> hits();
    /// Goes to what was found.
    void openHit(const QSSearchHit &hit);

    // Backup
    /// Asks where to put a backup of everything saved, and writes it in the background. The message
    /// names how many filled PDFs could not be read and are not in it.
    void backupNow();
    /// Asks for a backup and whether to go on, then replaces everything saved by it. What is open
    /// is closed first, which the user can refuse.
    void restore();
    /// The same with this file, after the question.
    void restoreFrom(const QString &path);

    // Settings
    /// Removes all downloaded forms after asking; not while the program is busy.
    void emptyCache();
    /// Opens a folder in the file manager.
    void showFolder(const QString &path);

    // Drafts
    /// Offers what the last run left unsaved, then keeps drafts of what is typed: soon after the
    /// last key, and every three seconds while somebody types on.
    void startDrafts();
    /// Brings the drafts up to date at once. Does nothing before startDrafts().
    void keepDrafts();

    /// Asks about everything unsaved, then closes it; false when the user wants to stay, and then
    /// all is as it was.
    bool closeEverything();

Q_SIGNALS:
    void screenChanged();
    void selectionChanged();
    void searchChanged();
    void messageChanged();
    void busyChanged();
    void showDisclaimerChanged();
    /// Another document is open in the editor, or none.
    void editingChanged();
    /// The open document or form is about to be read: whoever holds letters that an input method
    /// has not handed over yet sets them now.
    void editsWanted();
    /// Another PDF is in the form window, or none.
    void openPDFChanged();
    /// The form that is open already was asked for again: its window comes to the front.
    void openPDFWanted();
    /// The person wants to see a field of the open form.
    void fieldWanted(int id);
    /// These fields of the open form may look different.
    void formValuesChanged(const QList<int> &ids);
    /// The open form was saved, or its status changed.
    void formChanged();
    void checkingChanged();
    /// The open document's title or answers changed otherwise than by setEditedTitle() and
    /// setEditedValue(), or it was saved.
    void editedDocumentChanged();
    /// The profile's answers were edited or saved.
    void profileEdited();
    /// What the store holds has changed.
    void revisionChanged();

private:
    enum class Answer { save, dontSave, cancel };
    /// Whether drafts are kept: not before the last run's were offered, and not over one that could
    /// neither be read nor set aside.
    enum class Drafting { later, on, off };
    /// What runs in the background while the user waits.
    struct Work
    {
        QString text;
        std::stop_source stop;
        Progress progress;
    };

    void hearStore();
    void storeChanged();
    Answer askToSave(const QString &name);
    /// Asks before something can't be taken back; Enter and Escape mean no.
    [[nodiscard]] bool agrees(const QString &text, const QString &detail, const QString &action);
    [[nodiscard]] bool askToDelete(const QString &name);
    /// Runs an action on the store; its error becomes the message. False when it failed.
    template <typename Action>
    bool withStore(Action action);
    /// Runs work in the background with a text for the user meanwhile, which stands back for that
    /// of work begun later. Work that heeds a stop can be ended by the user; what it came to is
    /// handed to done all the same.
    template <typename Result>
    void runBusy(const QString &text, const std::stop_source &stop,
                 std::function<Result(const AsyncTask::Progress &)> work,
                 std::function<void(const AsyncTask::Outcome<Result> &)> done);
    /// Runs work that the next step needs at once, on a thread of its own. Until it is done the
    /// window answers, but nothing is asked and nothing unsaved is closed.
    template <typename Result>
    Result waitBusy(const QString &text, const std::function<Result()> &work);
    /// Puts an action off until no question or panel stands open.
    void whenNothingIsAsked(const std::function<void()> &action);
    void dropEdited();
    [[nodiscard]] std::optional<QSLinkCheck> lastLinkCheck(const QSEntry &entry);
    /// What was asked for before is not to be shown any more; the token says so of this one.
    [[nodiscard]] std::stop_source startOpening();
    /// Shows a form in the form window, unless the user wants to stay with the open one.
    void openSession(const OpenPDF &form);
    void showSession(const FormSession &session);
    void dropForm();
    void openCopy(const QSEntry &entry, const QSCache::Result &copy,
                  const std::shared_ptr<QSPDFDocument> &document, const QString &problem);
    /// Opens the person's own copy of a Word form in the desktop's program; the agency's file is
    /// not for changing.
    void openWordCopy(const QString &title, const QSCache::Result &official);
    [[nodiscard]] bool prefersOwnCopy(const QString &title, const QString &path);
    void linksChecked(const QList<QSLinkChecker::Check> &checks);
    /// Returns why they could not be recorded; empty when they are.
    [[nodiscard]] QString recordChecks(const QList<QSLinkChecker::Check> &checks);
    /// Makes a file in the background, then asks where to put it; the message when it can't be
    /// made.
    void exportFile(const QString &name,
                    const std::function<QByteArray(const std::stop_token &)> &make,
                    const std::function<QString(const QSError &)> &failure);
    void exportPDF(const std::shared_ptr<QSPDFDocument> &document, const QString &title,
                   FormExport how);
    /// Opens a filled copy's file in the background; the message when that fails.
    void loadFilledPDF(const QSFilledPDF &record,
                       const std::function<void(const std::shared_ptr<QSPDFDocument> &)> &loaded);
    [[nodiscard]] std::optional<QString> printPages(const QSPDFDocument &pages,
                                                    const QString &title);
    void printPDF(const std::shared_ptr<QSPDFDocument> &document, const QString &title);
    /// Says where something was printed, unless that was cancelled.
    void tellOfPrinting(const std::optional<QString> &where);
    /// Makes a form's flattened copy in the background and uses it; where answers are not whole on
    /// it, only if the user wants that all the same. anyway: the button that says so.
    void withFlatCopy(const std::shared_ptr<QSPDFDocument> &document, const QString &work,
                      const QString &anyway, const std::function<void(const QByteArray &)> &use);
    /// True when the copy is wanted as it is.
    [[nodiscard]] bool acceptsFaults(const std::shared_ptr<QSPDFDocument> &document,
                                     const QList<FormFault> &faults, const QString &anyway);
    /// Asks when letters of the document can't be printed; true when it is wanted as it is.
    [[nodiscard]] bool acceptsMissingLetters(const QSRendered &rendered, const QString &anyway);
    void copiesChanged();
    [[nodiscard]] std::optional<QMap<QString, QString>> savedProfile();
    /// Asks where to put a file and writes it whole or not at all.
    void saveFile(const QByteArray &data, const QString &suggestedName);
    std::optional<QString> chooseSavePath(const QString &suggestedName);
    /// The rendered document, or the message that there is none.
    std::optional<QSRendered> renderOrTell(const QSDocument &document);
    void draftSoon();
    void keepFormDraft();
    void cannotDraft(const QSError &error);
    [[nodiscard]] bool askToReopen(const QString &name);
    /// A draft of the last run; one that can't be read is set aside, with a message that says what
    /// it was.
    template <typename Draft>
    std::optional<Draft> draft(QSDrafts::Kind kind, const QString &what,
                               std::optional<Draft> (*read)());
    void setAside(QSDrafts::Kind kind, const QString &what, const QString &why);
    void beginDrafting();
    void offerProfileDraft();
    void offerDocumentDraft();
    /// Goes on with a form's draft that was read again, or puts it aside when it could not be.
    /// Drafts are kept from then on: its files are free for another form.
    void formDraftOpened(const FormDraft &draft,
                         const AsyncTask::Outcome<std::shared_ptr<QSPDFDocument>> &opened,
                         const std::stop_source &stop);
    /// Shows the form, or saves it when another one has its place; false, with the message, when
    /// neither worked.
    [[nodiscard]] bool reopenForm(const FormDraft &draft,
                                  const std::shared_ptr<QSPDFDocument> &document,
                                  const std::stop_source &stop);
    void openSession(const QSDocument &document);
    void openDocument(qint64 id);

    QSDesktop &m_desktop;
    Screen m_screen = Screen::finder;
    QString m_state;
    std::optional<QString> m_finderTaskID;
    QString m_selectedTemplateID;
    QString m_search;
    std::optional<QString> m_message;
    bool m_starting = false; ///< messages are added to the one that stands
    QString m_withoutStore =
        QStringLiteral("No documents database is open, so nothing can be saved.");
    bool m_showDisclaimer;
    bool m_asking = false;    ///< a question or panel of ours stands open
    bool m_exporting = false; ///< a file is being made
    bool m_saving = false;    ///< the open form's filled copy is being made
    std::optional<DocumentSession> m_editing;
    std::optional<FormSession> m_openPDF;
    std::optional<QSCategory> m_formCategory;
    std::optional<QString> m_selectedEntryID;
    std::optional<Progress> m_checking;
    std::optional<QMap<QString, QSLinkCheck>> m_linkChecks; ///< by URL; absent when out of date
    QMap<int, Work> m_works;                                ///< all that run, by number
    int m_lastWork = 0;                                     ///< number of the work begun last
    QString m_gettingEntryID;   ///< of the form on its way, unless that was stopped
    std::stop_source m_opening; ///< ends what was last asked to be shown in the form window
    std::stop_source m_check;   ///< ends the check of links that runs
    std::optional<QMap<QString, QString>> m_profileEdits;
    QTimer m_draftTimer;
    QElapsedTimer m_undrafted; ///< since the first change that no draft has yet
    Drafting m_drafting = Drafting::later;
    bool m_keepingFormPDF = false;            ///< a worker writes it
    bool m_toldOfDrafts = false;              ///< that they can't be kept
    std::optional<QTemporaryDir> m_handedOut; ///< copies that other programs may take
    QUuid m_draftedForm;                      ///< the opening whose PDF is kept
};

template <typename Result>
void AppModel::runBusy(const QString &text, const std::stop_source &stop,
                       std::function<Result(const AsyncTask::Progress &)> work,
                       std::function<void(const AsyncTask::Outcome<Result> &)> done)
{
    const int number = ++m_lastWork;
    m_works.insert(number, {.text = text, .stop = stop, .progress = {}});
    Q_EMIT busyChanged();
    AsyncTask::run<Result>(
        this, std::move(work),
        [this, number, done = std::move(done)](const auto &outcome) {
            m_works.remove(number);
            Q_EMIT busyChanged();
            done(outcome);
        },
        [this, number](int part, int of) {
            m_works[number].progress = {part, of};
            Q_EMIT busyChanged();
        });
}

template <typename Result>
Result AppModel::waitBusy(const QString &text, const std::function<Result()> &work)
{
    const int number = ++m_lastWork;
    const QScopedValueRollback asking(m_asking, true);
    m_works.insert(number,
                   {.text = text, .stop = std::stop_source(std::nostopstate), .progress = {}});
    Q_EMIT busyChanged();
    const auto done = qScopeGuard([this, number] {
        m_works.remove(number);
        Q_EMIT busyChanged();
    });
    return AsyncTask::wait<Result>(work);
}

template <typename Action>
bool AppModel::withStore(Action action)
{
    if (!store()) {
        setMessage(m_withoutStore);
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
