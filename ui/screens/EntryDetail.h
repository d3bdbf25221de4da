#pragma once

#include "QSEntry.h"

#include <QScrollArea>

#include <optional>

class AppModel;
class QLabel;
class QMenu;
class QPushButton;
class QToolButton;
class QVBoxLayout;
class VxIconLabel;
class VxTallText;
struct QSCacheMeta;

/// One official form: what it is, how its link stands, where it is filed, what is known about the
/// saved copy, and what can be done with it. A button keeps the keyboard while what it asked for is
/// under way, and does nothing meanwhile.
class EntryDetail final : public QScrollArea
{
    Q_OBJECT

public:
    explicit EntryDetail(AppModel &model, QWidget *parent = nullptr);

    /// Shows an entry as it stands now; for null, what to do to see one.
    void display(const QSEntry *entry);
    /// Does what the main button does.
    void act();
    /// Fills a menu with what the buttons do.
    void fillMenu(QMenu *menu) const;

private:
    /// A text after its icon.
    struct Line
    {
        VxIconLabel *icon;
        QLabel *text;
    };
    /// A text after what it is about.
    struct Fact
    {
        QLabel *name;
        QLabel *text;
    };

    [[nodiscard]] QWidget *createContent(QWidget *parent);
    [[nodiscard]] Line addLine(QVBoxLayout *column);
    void createButtons(QVBoxLayout *column);
    void createFacts(QVBoxLayout *column);
    void createMore(QVBoxLayout *column);
    void connectActions();
    void displayFacts(const std::optional<QSCacheMeta> &copy);
    static void setFact(const Fact &fact, const QString &value);

    AppModel &m_model;
    std::optional<QSEntry> m_entry;

    QLabel *m_hint;
    QWidget *m_content;
    QLabel *m_title = nullptr;
    QLabel *m_agency = nullptr;
    Line m_kind{};
    Line m_status{};
    QLabel *m_note = nullptr;
    QPushButton *m_main = nullptr;
    QPushButton *m_page = nullptr;
    QPushButton *m_recheck = nullptr;
    QPushButton *m_showCopy = nullptr;
    QLabel *m_officeHeading = nullptr;
    QLabel *m_office = nullptr;
    Fact m_number{};
    Fact m_revision{};
    Fact m_downloaded{};
    Fact m_copy{};
    QToolButton *m_more = nullptr;
    VxTallText *m_details = nullptr;
};
