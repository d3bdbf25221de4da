#pragma once

#include "QSFinder.h"

#include <QList>
#include <QWidget>

class AppModel;
class QLabel;
class QPushButton;
class QVBoxLayout;
class VxIconLabel;

/// What one task takes in the model's state of the moment: official forms, where they are filed,
/// fees, help, templates. A button keeps the keyboard while the form that it asked for is under
/// way, and does nothing meanwhile.
class FinderPage final : public QWidget
{
    Q_OBJECT

public:
    FinderPage(AppModel &model, const QSTask &task, QWidget *parent = nullptr);

    /// True when this is the page of the task in the state.
    [[nodiscard]] bool shows(const QSTask &task, const QString &state) const;
    /// Shows how the forms' links stand now. Everything else stays as it is.
    void refresh();

private:
    /// A form and the line that says how its link stands.
    struct FormLine
    {
        QSEntry entry;
        VxIconLabel *icon;
        QLabel *status;
    };
    /// Texts with a button beside them.
    struct Row
    {
        QVBoxLayout *texts;
        QPushButton *button;
    };
    /// What a row shows.
    struct RowText
    {
        QString title;
        QString about;
        QString action;       ///< of the button
        QString symbol = {};  ///< before the title
        bool browses = false; ///< the button opens the web browser
    };

    void createParts(const QSFinderResult &found);
    void createForms(const QString &place, const QList<QSEntry> &forms);
    void createForm(QVBoxLayout *section, const QSEntry &entry);
    void createStatutoryForm(const QSFinderResult &found);
    void createOffices(const QList<QSFinderResult::Office> &offices);
    void createFeePages(const QList<QSFinderResult::FeePage> &pages);
    void createSelfHelp(const QSJurisdiction &state);
    void createTemplates(const QList<QSTemplate> &templates);
    void createLegalAid(const QList<QSLegalAid> &resources);

    void addText(const QString &text);
    /// A heading with a panel below it; gives the panel's column.
    QVBoxLayout *addSection(const QString &heading);
    Row addRow(QVBoxLayout *section, const RowText &text);
    /// Without an address the texts stand alone.
    void addLink(QVBoxLayout *section, const QString &title, const QString &about,
                 const QString &url);
    void connectLink(QPushButton *button, const QString &url);

    AppModel &m_model;
    QString m_task;
    QString m_state;
    QList<FormLine> m_forms;
    QVBoxLayout *m_column;
};
