#pragma once

#include <QList>
#include <QRectF>
#include <QString>

#include <optional>

/// The text of a PDF's pages, letter by letter with places, as another program reads it.
class PageText final
{
public:
    enum class Engine { poppler, mupdf };

    /// Nothing when the engine can't read the file.
    [[nodiscard]] static std::optional<PageText> of(Engine engine, const QString &pdf);

    /// True when a text can be read whole in a place of a page: its letters one after the other,
    /// though a form's own print may stand between them (rules, commas between the cells of a
    /// comb, dots that lead to a sum). Texts that are written from right to left, or whose signs
    /// change places, have to be there in any order.
    [[nodiscard]] bool shows(const QString &text, int page, const QRectF &place) const;
    /// What can be read there, without spaces.
    [[nodiscard]] QString textIn(int page, const QRectF &place) const;

private:
    struct Letter
    {
        QString text; // compatible forms made equal, no spaces
        QPointF middle;
        double doubt; // in points along the line, where the engine gives places of words only
    };
    using Letters = QList<Letter>;

    [[nodiscard]] Letters lettersIn(int page, const QRectF &place) const;
    static PageText fromPoppler(const QByteArray &words);
    static PageText fromMuPDF(const QByteArray &structure);
    void append(const QString &text, const QRectF &box, double doubt = 0);
    void appendWord(const QString &word, const QRectF &box);
    static QString lineByLine(Letters letters);

    QList<Letters> m_pages;
};
