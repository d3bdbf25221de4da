#include "VellHelpPage.h"

#include "VellThemeRoot.h"
#include "VxFolded.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <QWheelEvent>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int lettersInLine = 70;
const QString sample = u"the quick brown fox jumps over the lazy dog"_s;
constexpr int lineHeight = 125; ///< per cent of the font's

/// How one kind of text looks; lengths are in heights of the font.
struct Look
{
    int headingLevel; ///< 0 for none
    int size;         ///< steps above the font's own, as HTML counts them
    QFont::Weight weight;
    qreal above;
};

constexpr Look titleLook{1, 2, QFont::DemiBold, 0};
/// In the order of VellHelpBlock::Kind.
constexpr std::array looks = {Look{2, 1, QFont::DemiBold, 1.1}, Look{0, 0, QFont::Normal, 0.3},
                              Look{0, 0, QFont::Normal, 0.3}};
constexpr qreal aboveAfterEmpty = 0.8;

/// Appends blocks of text to an empty document.
class Writer final
{
public:
    Writer(QTextDocument *document, int em) : m_cursor(document), m_em(em) {}

    void write(const QString &text, const Look &look, qreal above)
    {
        QTextBlockFormat block;
        block.setHeadingLevel(look.headingLevel);
        block.setTopMargin(above * m_em);
        block.setLineHeight(lineHeight, QTextBlockFormat::ProportionalHeight);
        QTextCharFormat letters;
        letters.setProperty(QTextFormat::FontSizeAdjustment, look.size);
        letters.setFontWeight(look.weight);
        if (m_cursor.atStart()) {
            m_cursor.setBlockFormat(block);
        } else {
            m_cursor.insertBlock(block, letters);
        }
        m_cursor.insertText(text, letters);
    }

    void write(const VellHelpBlock &block)
    {
        if (block.text.isEmpty()) {
            m_list = nullptr;
            m_room = aboveAfterEmpty;
            return;
        }
        const Look &look = looks.at(static_cast<std::size_t>(block.kind));
        write(block.text, look, qMax(look.above, m_room));
        m_room = 0;
        if (block.kind == VellHelpBlock::Kind::bullet) {
            makeItem();
        } else {
            m_list = nullptr;
        }
    }

private:
    void makeItem()
    {
        if (m_list) {
            m_list->add(m_cursor.block());
        } else {
            m_list = m_cursor.createList(QTextListFormat::ListDisc);
        }
        // Qt puts one blank of the block's own font between bullet and text, which is too little
        QTextCharFormat wide;
        wide.setFontStretch(QFont::UltraExpanded);
        m_cursor.mergeBlockCharFormat(wide);
    }

    QTextCursor m_cursor;
    QTextList *m_list = nullptr; ///< that the next item goes on with
    int m_em;
    qreal m_room = 0; ///< that an empty line asks for above the next block
};
} // namespace

VellHelpPage::VellHelpPage(QWidget *parent) : QTextEdit(parent)
{
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setLineWrapMode(FixedPixelWidth);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    if (VellThemeRoot *root = VellThemeRoot::instance()) {
        connect(root, &VellThemeRoot::changed, this, &VellHelpPage::rewrite);
    }
}

void VellHelpPage::setTopic(const QString &title, const QList<VellHelpBlock> &blocks)
{
    m_title = title;
    m_blocks = blocks;
    setAccessibleName(title);
    write();
    moveCursor(QTextCursor::Start);
    verticalScrollBar()->setValue(0);
}

void VellHelpPage::setMarked(const QStringList &words)
{
    m_words = words;
    mark();
}

void VellHelpPage::write()
{
    const int em = fontMetrics().height();
    clear();
    document()->setDocumentMargin(em);
    document()->setIndentWidth(em * 1.5);
    Writer writer(document(), em);
    writer.write(m_title, titleLook, titleLook.above);
    for (const VellHelpBlock &block : m_blocks) {
        writer.write(block);
    }
    limitLines();
    mark();
}

void VellHelpPage::rewrite()
{
    const int top = cursorForPosition({0, 0}).position();
    const int anchor = textCursor().anchor();
    const int position = textCursor().position();
    write();
    QTextCursor selection(document());
    selection.setPosition(anchor);
    selection.setPosition(position, QTextCursor::KeepAnchor);
    setTextCursor(selection);
    const QRectF read = document()->documentLayout()->blockBoundingRect(document()->findBlock(top));
    verticalScrollBar()->setValue(top > 0 ? qRound(read.top()) : 0);
}

void VellHelpPage::mark()
{
    const VellTheme &theme = VellThemeRoot::theme();
    ExtraSelection marked;
    marked.format.setBackground(theme.accent.color(0.28));
    marked.format.setFontUnderline(true); // for those who don't see the colour
    QList<ExtraSelection> all;
    const VxFolded text(toPlainText());
    for (const QString &word : m_words) {
        for (const VxFolded::Span &span : text.occurrences(word)) {
            marked.cursor = QTextCursor(document());
            marked.cursor.setPosition(static_cast<int>(span.begin));
            marked.cursor.setPosition(static_cast<int>(span.end), QTextCursor::KeepAnchor);
            all.append(marked);
        }
    }
    setExtraSelections(all);
}

void VellHelpPage::limitLines()
{
    // a font's own average takes in letters that no English text has
    const qreal letter = fontMetrics().horizontalAdvance(sample) / qreal(sample.size());
    const qreal longest = letter * lettersInLine + document()->documentMargin() * 2;
    setLineWrapColumnOrWidth(qMin(viewport()->width(), qRound(longest)));
}

void VellHelpPage::resizeEvent(QResizeEvent *event)
{
    QTextEdit::resizeEvent(event);
    limitLines();
}

void VellHelpPage::wheelEvent(QWheelEvent *event)
{
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        event->ignore(); // the base class would give this text a size of its own
    } else {
        QTextEdit::wheelEvent(event);
    }
}
