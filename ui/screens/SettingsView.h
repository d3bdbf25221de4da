#pragma once

#include <QList>
#include <QScrollArea>

class AppModel;
class QLabel;
class QVBoxLayout;
class VxComboBox;
class VxPanel;

/// Backup & Settings: backup and restore, where the user's data is, the cache of official forms,
/// and the program's look.
class SettingsView final : public QScrollArea
{
    Q_OBJECT

public:
    explicit SettingsView(AppModel &model, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    /// A panel with a heading and a text, below those that are there.
    [[nodiscard]] VxPanel *addSection(const QString &heading, const QString &text = {});
    void createBackup();
    void createPlaces();
    void createCache();
    void createLook();
    void connectLook();
    void showCache();
    void showLook();

    AppModel &m_model;
    QVBoxLayout *m_column;
    QLabel *m_cache = nullptr;
    VxComboBox *m_theme = nullptr;
    VxComboBox *m_size = nullptr;
    QList<int> m_sizes; ///< offered, in per cent
};
