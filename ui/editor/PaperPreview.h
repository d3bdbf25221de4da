#pragma once

#include "QSPageLayout.h"

#include <QAbstractScrollArea>

/// The document as the sheets of paper it prints on, below each other, as wide as the room allows.
/// What it draws is the layout that printing and the PDF draw.
class PaperPreview final : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit PaperPreview(QWidget *parent = nullptr);

    /// Shows another document from its top.
    void open(const QSRendered &rendered);
    /// Shows the same document after a change, and brings the change into view.
    void follow(const QSRendered &rendered);
    /// The document's characters for which this computer has no letters; each once.
    [[nodiscard]] QString missingCharacters() const { return m_layout.missingCharacters(); }

protected:
    void focusInEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    [[nodiscard]] qreal scale() const; ///< pixels for a point
    [[nodiscard]] int gap() const;     ///< pixels around and between the sheets
    /// A sheet in the viewport's pixels.
    [[nodiscard]] QRectF sheet(int page) const;
    void fitScrollBar();
    void reveal(int block);
    void paintSheet(QPainter &painter, int page) const;

    QSRendered m_rendered;
    QSPageLayout m_layout;
};
