#pragma once

#include "QSPDFDocument.h"
#include "SmallPDF.h"

#include <QImage>

#include <algorithm>
#include <cstdlib>

/// A form of one text field with this typed into it.
inline std::shared_ptr<QSPDFDocument> withValue(const QByteArray &widget, const QString &text)
{
    auto document = QSPDFDocument::open(smallPDF({widget}));
    document->setValue(0, {.text = text, .on = false, .chosen = {}});
    return document;
}

/// What the field prints, as pdftotext reads it without spaces.
inline QString printed(const FormField &field, const FormValue &value)
{
    QString text = value.text;
    for (const int chosen : value.chosen) {
        text = field.choices.at(chosen).label;
    }
    text = field.password ? QString(text.size(), QLatin1Char('*')) : text;
    return text.remove(QLatin1Char(' ')).remove(QLatin1Char('\n'));
}

/// Fails for each field whose value is not to be read in its place.
inline void verifyPrinted(const QSPDFDocument &document, const QByteArray &pdf)
{
    const Words words(pdf);
    for (const FormField &field : document.fields()) {
        if (field.isSettable() && field.shown) {
            const QString text = printed(field, document.value(field.id));
            const QString found = words.in(field.page, field.rect);
            // By place, letters from right to left come in the order in which they stand.
            QString backwards = text;
            std::ranges::reverse(backwards);
            QVERIFY2(
                found.contains(text.isRightToLeft() ? backwards : text),
                qPrintable(field.name + QLatin1String(": ") + text + QLatin1String(" / ") + found));
        }
    }
}

/// How many dots of a drawing are not white.
inline qsizetype ink(const QImage &image)
{
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    qsizetype dots = 0;
    for (int y = 0; y < grey.height(); ++y) {
        const uchar *line = grey.constScanLine(y);
        dots += std::count_if(line, line + grey.width(), [](uchar dot) { return dot < 200; });
    }
    return dots;
}

/// True for two drawings of the same: they may put the edges of letters and boxes on other dots.
inline bool alike(const QImage &one, const QImage &other)
{
    constexpr int most = 110; // of 255 greys
    const auto soft = [](const QImage &image) {
        return image.scaled(image.size() / 3, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_Grayscale8);
    };
    const QImage a = soft(one);
    const QImage b = soft(other);
    if (a.size() != b.size() || a.isNull()) {
        return false;
    }
    int worst = 0;
    for (int y = 0; y < a.height(); ++y) {
        const uchar *left = a.constScanLine(y);
        const uchar *right = b.constScanLine(y);
        for (int x = 0; x < a.width(); ++x) {
            worst = std::max(worst, std::abs(left[x] - right[x]));
        }
    }
    if (worst > most) {
        qWarning("The drawings differ by %d greys", worst);
    }
    return worst <= most;
}
