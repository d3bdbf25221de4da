#pragma once

#include "PageText.h"

#include <QByteArray>
#include <QList>
#include <QRectF>
#include <QString>

#include <optional>

/// A page in grey, as another program draws it.
class Drawing final
{
public:
    /// All pages of a PDF; nothing when the engine can't draw them.
    [[nodiscard]] static std::optional<QList<Drawing>> of(PageText::Engine engine,
                                                          const QString &pdf, int dotsPerInch);

    /// The number of dots that differ clearly from those of another drawing, in a place in points.
    [[nodiscard]] qsizetype otherDots(const Drawing &other, const QRectF &place) const;
    [[nodiscard]] qsizetype darkDots() const;
    /// The number of dark dots that another drawing of the same page doesn't have.
    [[nodiscard]] qsizetype darkDotsBeyond(const Drawing &other) const;

private:
    int m_dotsPerInch = 72;
    int m_width = 0;
    int m_height = 0;
    QByteArray m_dots;
};
