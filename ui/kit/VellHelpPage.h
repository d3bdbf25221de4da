#pragma once

#include <QList>
#include <QStringList>
#include <QTextEdit>

/// One piece of a help topic, as a line of its body gives it.
struct VellHelpBlock
{
    enum class Kind { heading, bullet, paragraph };

    Kind kind = Kind::paragraph;
    QString text; ///< empty only for a paragraph: room before what follows

    bool operator==(const VellHelpBlock &) const = default;
};

/// A topic to read: a document with real headings and lists, in lines that the eye can follow,
/// selectable and scrollable by keyboard, in the theme and at the zoom that are shown.
class VellHelpPage final : public QTextEdit
{
    Q_OBJECT

public:
    explicit VellHelpPage(QWidget *parent = nullptr);

    /// Shows another topic from its beginning.
    void setTopic(const QString &title, const QList<VellHelpBlock> &blocks);
    /// Marks these folded words wherever they stand.
    void setMarked(const QStringList &words);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void write();
    /// Writes the topic anew in another look; what is being read stays in view.
    void rewrite();
    void mark();
    void limitLines();

    QString m_title;
    QList<VellHelpBlock> m_blocks;
    QStringList m_words;
};
