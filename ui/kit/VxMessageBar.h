#pragma once

#include <QFrame>

class QLabel;
class QProgressBar;
class QToolButton;

/// One line of the window for what just happened or is going on: a sentence that stays until it
/// is dismissed or replaced, and a busy text with a moving bar. Hidden while there is neither.
class VxMessageBar final : public QFrame
{
    Q_OBJECT

public:
    explicit VxMessageBar(QWidget *parent = nullptr);

    /// The sentence and the busy text to show, each empty for none.
    void display(const QString &message, const QString &busy);

Q_SIGNALS:
    /// The user has read the sentence.
    void dismissed();

private:
    void announce(const QString &text);

    QLabel *m_icon;
    QLabel *m_text;
    QLabel *m_busy;
    QProgressBar *m_bar;
    QToolButton *m_dismiss;
};
