#pragma once

#include "VellHelp.h"
#include "VellHelpPage.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;

/// The help to read: the search field above the topics on the left, and on the right the topic.
/// What is typed filters at once and shows the best topic. Down or Enter leads from the search to
/// the topics, and Enter from there to the text.
class VellHelpViewer final : public QWidget
{
    Q_OBJECT

public:
    /// At the topic of that id, or at the first one.
    explicit VellHelpViewer(const QString &initialTopic = {}, QWidget *parent = nullptr);

    /// The pieces of a topic's body, one for each of its lines.
    [[nodiscard]] static QList<VellHelpBlock> blocks(const QString &body);

    /// Ends a search and shows the topic of that id, or the first one.
    void openTopic(const QString &id);
    /// Ends a search at what is being read; false when there is none.
    bool clearSearch();
    /// Gives the search field the keyboard.
    void startSearch();
    /// Gives the text the keyboard.
    void startReading();

private:
    [[nodiscard]] QWidget *createTopics();
    void connectViews();
    void filter();
    /// Lists what the search finds and shows the topic of that id, or the first one.
    void list(const QString &id);
    /// Says how much the search finds, to all who read the screen and to all who hear it.
    void tellFound();
    void showCurrent();
    void enterList();

    QList<VellHelpTopic> m_topics; ///< those listed
    QString m_current;             ///< id of the topic that is shown
    QLineEdit *m_search;
    QLabel *m_nothing;
    QListWidget *m_list;
    VellHelpPage *m_page;
};
