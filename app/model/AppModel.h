#pragma once

#include "DocumentSession.h"
#include "QSExport.h"
#include "Screen.h"

#include <QMap>
#include <QObject>
#include <QString>

#include <optional>

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
    /// The desktop has to live as long as the model.
    explicit AppModel(QSDesktop &desktop, QObject *parent = nullptr);

    /// The program's store; null when no database could be opened.
    [[nodiscard]] static QSStore *store() { return QSStore::shared(); }

    [[nodiscard]] Screen screen() const { return m_screen; }
    /// Shows a screen. With a document in the editor that is closed first, which the user can
    /// refuse; returns whether the screen is shown.
    bool show(Screen screen);
    /// Code of the chosen jurisdiction.
    [[nodiscard]] const QString &state() const { return m_state; }
    /// Chooses a jurisdiction and remembers it in the preferences.
    void setState(const QString &code);
    [[nodiscard]] const QString &selectedTemplateID() const { return m_selectedTemplateID; }
    void selectTemplate(const QString &id);
    [[nodiscard]] const QString &search() const { return m_search; }
    void setSearch(const QString &text);
    [[nodiscard]] const std::optional<QString> &message() const { return m_message; }
    void setMessage(const std::optional<QString> &message);
    /// Text of a running operation; absent when none runs.
    [[nodiscard]] const std::optional<QString> &busy() const { return m_busy; }
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
    /// Deletes after asking.
    void deleteDocument(const QSDocument &document);
    /// Makes the file in the background, then asks where to put it. One at a time: while one is
    /// being made, another call does nothing.
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

    // Search
    [[nodiscard]] QList<QSSearchHit> hits();
    void openHit(const QSSearchHit &hit);
    /// The official page about a form, or the form itself where the directory has no page, in the
    /// browser.
    void openOfficialPage(const QSEntry &entry);

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
    /// The open document is about to be read: whoever holds letters that an input method has not
    /// handed over yet sets them now.
    void editsWanted();
    /// The open document's title or answers changed otherwise than by setEditedTitle() and
    /// setEditedValue(), or it was saved.
    void editedDocumentChanged();
    /// The profile's answers were edited or saved.
    void profileEdited();
    /// What the store holds has changed.
    void revisionChanged();

private:
    enum class Answer { save, dontSave, cancel };

    Answer askToSave(const QString &name);
    /// Runs an action on the store; its error becomes the message. False when it failed.
    template <typename Action>
    bool withStore(Action action);
    void setBusy(const std::optional<QString> &text);
    void dropEdited();
    [[nodiscard]] std::optional<QMap<QString, QString>> savedProfile();
    void saveWhenNothingIsAsked(const QByteArray &data, const QString &suggestedName);
    /// Asks where to put a file and writes it whole or not at all.
    void saveFile(const QByteArray &data, const QString &suggestedName);
    /// The rendered document, or the message that there is none.
    std::optional<QSRendered> renderOrTell(const QSDocument &document);
    void openSession(const QSDocument &document);

    QSDesktop &m_desktop;
    Screen m_screen = Screen::templates;
    QString m_state;
    QString m_selectedTemplateID;
    QString m_search;
    std::optional<QString> m_message;
    std::optional<QString> m_busy;
    bool m_showDisclaimer;
    bool m_asking = false; ///< a question of ours stands open
    std::optional<DocumentSession> m_editing;
    std::optional<QMap<QString, QString>> m_profileEdits;
};
