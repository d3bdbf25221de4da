#include "Drawings.h"

#include "Programs.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;

namespace {
bool isDark(char dot)
{
    constexpr unsigned char lightest = 160;
    return static_cast<unsigned char>(dot) < lightest;
}

/// The next number of a PGM's head; -1 where there is none.
int nextNumber(const QByteArray &bytes, qsizetype &at)
{
    constexpr int largest = 100'000;
    const auto isDigit = [&] {
        return at < bytes.size() && bytes.at(at) >= '0' && bytes.at(at) <= '9';
    };
    while (at < bytes.size() && !isDigit()) {
        ++at;
    }
    int number = -1;
    for (; isDigit() && number < largest; ++at) {
        number = std::max(number, 0) * 10 + (bytes.at(at) - '0');
    }
    return number;
}
} // namespace

std::optional<QList<Drawing>> Drawing::of(PageText::Engine engine, const QString &pdf,
                                          int dotsPerInch)
{
    const QString resolution = QString::number(dotsPerInch);
    const Programs::Output output =
        engine == PageText::Engine::poppler
            ? Programs::run(u"pdftoppm"_s, {u"-r"_s, resolution, u"-gray"_s, u"-cropbox"_s, pdf})
            : Programs::run(u"mutool"_s, {u"draw"_s, u"-q"_s, u"-r"_s, resolution, u"-c"_s,
                                          u"gray"_s, u"-F"_s, u"pgm"_s, u"-o"_s, u"-"_s, pdf});
    if (!output.isGood()) {
        return std::nullopt;
    }
    QList<Drawing> drawings;
    for (qsizetype at = 0; output.text.mid(at, 2) == "P5";) {
        at += 2;
        Drawing drawing;
        drawing.m_dotsPerInch = dotsPerInch;
        drawing.m_width = nextNumber(output.text, at);
        drawing.m_height = nextNumber(output.text, at);
        const bool isGrey = nextNumber(output.text, at) == 255;
        const qsizetype size = qsizetype{drawing.m_width} * drawing.m_height;
        if (!isGrey || drawing.m_width < 0 || at + 1 + size > output.text.size()) {
            return std::nullopt;
        }
        drawing.m_dots = output.text.mid(at + 1, size);
        drawings.append(drawing);
        at += 1 + size;
    }
    return drawings;
}

qsizetype Drawing::otherDots(const Drawing &other, const QRectF &place) const
{
    constexpr int clear = 64;
    const double scale = m_dotsPerInch / 72.0;
    const int left = std::max(0, static_cast<int>(place.left() * scale));
    const int right =
        std::min({m_width, other.m_width, static_cast<int>(place.right() * scale) + 1});
    const int top = std::max(0, static_cast<int>(place.top() * scale));
    const int bottom =
        std::min({m_height, other.m_height, static_cast<int>(place.bottom() * scale) + 1});
    qsizetype dots = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            const auto mine = static_cast<unsigned char>(m_dots.at(qsizetype{y} * m_width + x));
            const auto others =
                static_cast<unsigned char>(other.m_dots.at(qsizetype{y} * other.m_width + x));
            dots += std::abs(mine - others) > clear ? 1 : 0;
        }
    }
    return dots;
}

qsizetype Drawing::darkDots() const
{
    return std::ranges::count_if(m_dots, isDark);
}

qsizetype Drawing::darkDotsBeyond(const Drawing &other) const
{
    const qsizetype size = std::min(m_dots.size(), other.m_dots.size());
    qsizetype dots = 0;
    for (qsizetype i = 0; i < size; ++i) {
        dots += isDark(m_dots.at(i)) && !isDark(other.m_dots.at(i)) ? 1 : 0;
    }
    return dots;
}
