#pragma once

#include <QAbstractButton>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QScrollArea>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

/// How well what a window shows can be read, from its picture.
namespace Legibility {
constexpr double body = 7;
constexpr double secondary = 4.5;
constexpr double mark = 3; ///< for what is no text

/// A piece of text, where it is in the picture and what contrast it needs.
struct Text
{
    QString what;
    QRect rect;
    double first = body; ///< of its first line
    double rest = first; ///< of those below
};

inline QImage picture(QWidget &window, const QRect &part)
{
    return window.grab(part).toImage().convertToFormat(QImage::Format_RGB32);
}

inline const QRgb *dotsOf(const QImage &image, int y)
{
    return reinterpret_cast<const QRgb *>(image.constScanLine(y));
}

inline double luminance(QRgb colour)
{
    static const auto linear = [] {
        std::array<double, 256> all{};
        for (std::size_t i = 0; i < all.size(); ++i) {
            const double c = double(i) / 255;
            all[i] = c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        }
        return all;
    }();
    const auto at = [](int channel) { return linear[std::size_t(channel)]; };
    return 0.2126 * at(qRed(colour)) + 0.7152 * at(qGreen(colour)) + 0.0722 * at(qBlue(colour));
}

inline double contrast(QRgb a, QRgb b)
{
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

/// The most frequent colour of a row of dots: gradients run from top to bottom only.
inline QRgb ground(const QRgb *dots, int width)
{
    std::map<QRgb, int> counts;
    for (int x = 0, end = 0; x < width; x = end) {
        while (end < width && dots[end] == dots[x]) {
            ++end;
        }
        counts[dots[x]] += end - x;
    }
    using Count = std::map<QRgb, int>::value_type;
    return std::ranges::max_element(counts, {}, &Count::second)->first;
}

/// Contrast of the colour that letters have where they are not smoothed, on the worst ground that
/// they stand on; of each line. Rows of dots without letters part the lines.
inline QList<double> lineContrasts(const QImage &image, const QRect &rect)
{
    QList<double> lines;
    QList<QRgb> grounds;
    QList<std::pair<double, QRgb>> inks;
    const auto endLine = [&] {
        constexpr int share = 20; // a smoothed letter has at least that share of dots in its colour
        if (inks.size() >= 2 * share) {
            const auto full = inks.begin() + inks.size() / share;
            std::ranges::nth_element(inks, full, std::ranges::greater());
            double worst = 21;
            for (const QRgb each : grounds) {
                worst = std::min(worst, contrast(full->second, each));
            }
            lines.append(worst);
        }
        inks.clear();
        grounds.clear();
    };
    QRgb under = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        const QRgb *dots = dotsOf(image, y) + rect.left();
        const QRgb likely = ground(dots, rect.width());
        if (y == rect.top() || contrast(likely, under) < 1.1) { // else the letters have the most
            under = likely;
        }
        const qsizetype before = inks.size();
        for (int x = 0; x < rect.width(); ++x) {
            if (dots[x] != under) {
                inks.append({contrast(dots[x], under), dots[x]});
            }
        }
        if (inks.size() > before) {
            grounds.append(under);
        } else {
            endLine();
        }
    }
    endLine();
    return lines;
}

/// The part of a button's text that no icon or arrow stands in.
inline QRect lettersOf(const QAbstractButton &button)
{
    const QFontMetrics metrics = button.fontMetrics();
    const QPoint centre = button.rect().center();
    return {centre.x(), centre.y() - metrics.height() / 2,
            metrics.horizontalAdvance(button.text()) / 3, metrics.height()};
}

inline QList<Text> rowsOf(const QAbstractItemView &view)
{
    QList<Text> found;
    const QAbstractItemModel *model = view.model();
    const int em = view.fontMetrics().height();
    for (int cell = 0; model && cell < model->rowCount() * model->columnCount(); ++cell) {
        const QModelIndex index =
            model->index(cell / model->columnCount(), cell % model->columnCount());
        QRect at = view.visualRect(index).intersected(view.viewport()->rect());
        if (at.height() < em) {
            continue;
        }
        const bool hasIcon = !index.data(Qt::DecorationRole).isNull();
        at.adjust(hasIcon ? em * 2 : em / 3, em / 6, -em / 3, -em / 6);
        const bool isOnAccent = view.selectionModel()->isSelected(index) &&
                                view.objectName() != QStringLiteral("sidebar");
        found.append({index.data().toString(), at.translated(view.viewport()->pos()),
                      isOnAccent ? secondary : body, secondary});
    }
    return found;
}

/// What a menu or a menu bar offers; the one that is active stands on the accent.
template <typename Menu>
QList<Text> commandsOf(const Menu &menu, const QAction *active, int beside)
{
    QList<Text> found;
    for (QAction *action : menu.actions()) {
        if (action->isEnabled() && !action->isSeparator()) {
            found.append({action->text(),
                          menu.actionGeometry(action).adjusted(beside, 0, -beside / 2, 0),
                          action == active ? secondary : body});
        }
    }
    return found;
}

/// What is typed or chosen in a control, else what stands there in its place.
inline Text contentOf(const QWidget &widget)
{
    const int inset = widget.fontMetrics().height() / 2;
    const auto *line = qobject_cast<const QLineEdit *>(&widget);
    const bool hasIcon = line && !line->actions().isEmpty();
    const QRect rect = widget.contentsRect().adjusted(hasIcon ? inset * 4 : inset, inset / 2,
                                                      -inset * 4, -inset / 2);
    for (const char *kind : {"text", "plainText", "currentText"}) {
        if (const QString typed = widget.property(kind).toString(); !typed.isEmpty()) {
            return {typed, rect};
        }
    }
    return {widget.property("placeholderText").toString(), rect, secondary};
}

/// The texts of one widget, in its own coordinates.
inline QList<Text> textsOf(const QWidget &widget)
{
    const int em = widget.fontMetrics().height();
    if (const auto *label = qobject_cast<const QLabel *>(&widget)) {
        const bool isNote = label->property("role") == QStringLiteral("note");
        return {{label->text(), label->contentsRect(), isNote ? secondary : body}};
    }
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget)) {
        const bool isOnAccent = button->property("primary").toBool();
        return {{button->text(), lettersOf(*button), isOnAccent ? secondary : body}};
    }
    if (qobject_cast<const QHeaderView *>(&widget)) {
        return {{QStringLiteral("header"),
                 widget.contentsRect().adjusted(em / 2, em / 4, -em / 2, -em / 4), secondary}};
    }
    if (const auto *view = qobject_cast<const QAbstractItemView *>(&widget)) {
        return rowsOf(*view);
    }
    if (const auto *bar = qobject_cast<const QMenuBar *>(&widget)) {
        return commandsOf(*bar, nullptr, 0);
    }
    if (const auto *menu = qobject_cast<const QMenu *>(&widget)) {
        return commandsOf(*menu, menu->activeAction(), em * 5 / 2);
    }
    return {contentOf(widget)};
}

/// All enabled texts that can be seen in a window; what stands on a form's paper is the agency's.
inline QList<Text> texts(QWidget &window)
{
    QList<Text> found;
    for (const QWidget *each : QWidgetList{&window} + window.findChildren<QWidget *>()) {
        const bool isOnPaper = each->focusPolicy() == Qt::ClickFocus;
        if (!each->isVisible() || !each->isEnabled() || each->window() != &window || isOnPaper) {
            continue;
        }
        const QRect seen = each->visibleRegion().boundingRect();
        for (Text text : textsOf(*each)) {
            const bool isCut = text.rect.intersected(seen).height() < text.rect.height();
            text.rect = text.rect.intersected(seen).translated(each->mapTo(&window, QPoint()));
            if (!text.what.isEmpty() &&
                (!isCut || text.rect.height() > each->fontMetrics().height() * 2)) {
                found.append(text);
            }
        }
    }
    return found;
}

/// The lines that stand out too little; a window without any is wrong, too.
inline QStringList faint(QWidget &window)
{
    const QImage image = picture(window, window.rect());
    QStringList wrong;
    qsizetype measured = 0;
    for (const Text &text : texts(window)) {
        const QList<double> lines = lineContrasts(image, text.rect.intersected(image.rect()));
        measured += lines.size();
        for (qsizetype i = 0; i < lines.size(); ++i) {
            const double needed = i == 0 ? text.first : text.rest;
            if (lines.at(i) < needed) {
                wrong.append(QStringLiteral("%1 of %2 in \"%3\"")
                                 .arg(lines.at(i), 0, 'f', 2)
                                 .arg(needed)
                                 .arg(text.what.left(30)));
            }
        }
    }
    return measured > 0 ? wrong : QStringList{QStringLiteral("no text")};
}

inline void scrollTo(QWidget *widget)
{
    for (QWidget *each = widget; each; each = each->parentWidget()) {
        if (auto *area = qobject_cast<QScrollArea *>(each)) {
            area->ensureWidgetVisible(widget);
        }
    }
}

/// Dots that the keyboard's coming to a widget sets off from what they were.
inline int ringSize(QWidget &window, QWidget *widget)
{
    scrollTo(widget);
    const QRect place(widget->mapTo(&window, QPoint()), widget->size());
    widget->clearFocus();
    const QImage before = picture(window, place);
    widget->setFocus(Qt::TabFocusReason);
    const QImage after = picture(window, place);
    int found = 0;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            const QRgb was = dotsOf(before, y)[x];
            const QRgb is = dotsOf(after, y)[x];
            found += was != is && contrast(was, is) >= mark ? 1 : 0;
        }
    }
    return found;
}
} // namespace Legibility
