#pragma once

#include <QFrame>

class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;
class VxIconLabel;

/// One line of the window for what just happened or is going on: a sentence that stays until it
/// is dismissed or replaced, and a busy text with a bar that moves or shows how far the work is.
/// Hidden while there is neither.
class VxMessageBar final : public QFrame
{
    Q_OBJECT

public:
    /// What is going on.
    struct Work
    {
        QString text; ///< empty for nothing
        int done = 0;
        int total = 0; ///< 0 where nobody knows how much there is to do
        bool stoppable = false;
    };

    explicit VxMessageBar(QWidget *parent = nullptr);

    /// The sentence to show, empty for none. In the active window screen readers read it out, each
    /// time that it is displayed: saving once more says once more that it worked.
    void displayMessage(const QString &message);
    /// The work. Its text is read out when it changes; how far the work is, is not.
    void displayWork(const Work &work);
    /// Tab reaches the bar's buttons after that widget. Returns the last of them.
    QWidget *followInTabOrder(QWidget *before);

Q_SIGNALS:
    /// The user has read the sentence.
    void dismissed();
    /// The user wants the work to end.
    void stopWanted();

private:
    /// Shows the bar while it has something to show. The news is read out.
    void showWith(const QString &news);

    VxIconLabel *m_icon;
    QLabel *m_text;
    QLabel *m_busy;
    QProgressBar *m_bar;
    QToolButton *m_dismiss;
    QPushButton *m_stop;
    QString m_workText; ///< as last read out
};
