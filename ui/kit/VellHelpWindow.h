#pragma once

#include <QMainWindow>

class VellHelpViewer;

/// The window with the help. VellHelp::show() owns the one there is; it comes back where it was
/// closed, and does not keep the program running.
class VellHelpWindow final : public QMainWindow
{
    Q_OBJECT

public:
    VellHelpWindow();

    /// Comes to the front to read the topic of that id. When none is named, a window that is open
    /// stays at what is being read, and else it begins with the first topic and a search.
    void showTopic(const QString &id);

private:
    void createKeys();
    /// Ends the search, else closes.
    void escape();

    VellHelpViewer *m_viewer;
};
