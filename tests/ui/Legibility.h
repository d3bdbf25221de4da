#pragma once

#include "VellTheme.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QStyle>
#include <QTableView>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <vector>

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
    double rest = body;  ///< of those below
};

struct Measured
{
    Text text;
    double contrast = 0;
    double needed = 0;
};

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
    std::vector<std::pair<QRgb, int>> counts;
    std::size_t last = 0;
    for (int x = 0; x < width; ++x) {
        if (last >= counts.size() || counts[last].first != dots[x]) {
            last = 0;
            while (last < counts.size() && counts[last].first != dots[x]) {
                ++last;
            }
            if (last == counts.size()) {
                counts.emplace_back(dots[x], 0);
            }
        }
        ++counts[last].second;
    }
    return std::ranges::max_element(counts, {}, &std::pair<QRgb, int>::second)->first;
}

/// Contrast of the colour that letters have where they are not smoothed, on the worst ground that
/// they stand on. Rows of dots without letters part the lines.
inline QList<Measured> measure(const QImage &picture, const Text &text)
{
    QList<Measured> lines;
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
            lines.append({text, worst, lines.isEmpty() ? text.first : text.rest});
        }
        inks.clear();
        grounds.clear();
    };
    const QRect rect = text.rect.intersected(picture.rect());
    QRgb under = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        const QRgb *dots = line + rect.left();
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
    for (int row = 0; model && row < model->rowCount(); ++row) {
        for (int column = 0; column < model->columnCount(); ++column) {
            const QModelIndex index = model->index(row, column);
            QRect at = view.visualRect(index).intersected(view.viewport()->rect());
            if (at.height() < em || index.data().toString().isEmpty()) {
                continue;
            }
            at.adjust(index.data(Qt::DecorationRole).isNull() ? em / 3 : em * 2, em / 6, -em / 3,
                      -em / 6);
            const bool isSelected = view.selectionModel()->isSelected(index);
            const bool isOnAccent = isSelected && view.objectName() != QStringLiteral("sidebar");
            found.append(
                {index.data().toString() + (isSelected ? QStringLiteral(" (selected)") : QString()),
                 at.translated(view.viewport()->pos()), isOnAccent ? secondary : body, secondary});
        }
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
            const double needed = action == active ? secondary : body;
            found.append({action->text(),
                          menu.actionGeometry(action).adjusted(beside, 0, -beside / 2, 0), needed,
                          needed});
        }
    }
    return found;
}

/// The texts of one widget, in its own coordinates.
inline QList<Text> textsOf(const QWidget &widget)
{
    const QRect inside = widget.contentsRect();
    if (const auto *label = qobject_cast<const QLabel *>(&widget)) {
        const double needed = label->property("role") == QStringLiteral("note") ? secondary : body;
        return {{label->text(), inside, needed, needed}};
    }
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget)) {
        const double needed = button->property("primary").toBool() ? secondary : body;
        return {{button->text(), lettersOf(*button), needed, needed}};
    }
    const int inset = widget.fontMetrics().height() / 2;
    const QRect edit = inside.adjusted(inset, inset / 2, -inset * 4, -inset / 2);
    if (const auto *line = qobject_cast<const QLineEdit *>(&widget)) {
        const bool isPlaceholder = line->text().isEmpty();
        const double needed = isPlaceholder ? secondary : body;
        const bool hasIcon = !line->actions().isEmpty();
        return {{isPlaceholder ? line->placeholderText() : line->text(),
                 edit.adjusted(hasIcon ? inset * 3 : 0, 0, 0, 0), needed, needed}};
    }
    if (const auto *combo = qobject_cast<const QComboBox *>(&widget)) {
        return {{combo->currentText(), edit}};
    }
    if (const auto *area = qobject_cast<const QPlainTextEdit *>(&widget)) {
        const double needed = area->toPlainText().isEmpty() ? secondary : body;
        return {{area->toPlainText() + area->placeholderText(), edit, needed, needed}};
    }
    if (const auto *area = qobject_cast<const QTextEdit *>(&widget)) {
        return {{area->toPlainText(), edit}};
    }
    if (qobject_cast<const QHeaderView *>(&widget)) {
        return {{QStringLiteral("header"), inside.adjusted(inset, inset / 2, -inset, -inset / 2),
                 secondary, secondary}};
    }
    if (const auto *view = qobject_cast<const QAbstractItemView *>(&widget)) {
        return rowsOf(*view);
    }
    if (const auto *bar = qobject_cast<const QMenuBar *>(&widget)) {
        return commandsOf(*bar, nullptr, 0);
    }
    if (const auto *menu = qobject_cast<const QMenu *>(&widget)) {
        return commandsOf(*menu, menu->activeAction(), inset * 5);
    }
    return {};
}

/// All enabled texts that can be seen in a window.
inline QList<Text> texts(const QWidget &window)
{
    QList<Text> found;
    QList<const QWidget *> widgets = window.findChildren<const QWidget *>();
    widgets.append(&window);
    for (const QWidget *each : widgets) {
        const bool isOnPaper = each->focusPolicy() == Qt::ClickFocus;
        if (!each->isVisible() || !each->isEnabled() || each->window() != &window || isOnPaper) {
            continue;
        }
        const QRect seen = each->visibleRegion().boundingRect();
        for (Text text : textsOf(*each)) {
            const QPoint place = each->mapTo(&window, QPoint());
            const bool isCut = text.rect.intersected(seen).height() < text.rect.height();
            text.rect = text.rect.intersected(seen).translated(place);
            if (!text.what.isEmpty() &&
                (!isCut || text.rect.height() > each->fontMetrics().height() * 2)) {
                found.append(text);
            }
        }
    }
    return found;
}

inline QList<Measured> measure(QWidget &window)
{
    const QImage picture = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
    QList<Measured> found;
    for (const Text &text : texts(window)) {
        found += measure(picture, text);
    }
    return found;
}

/// Dots that the keyboard's coming to a widget sets off from what they were.
inline int ringSize(QWidget &window, QWidget *widget)
{
    for (QWidget *each = widget->parentWidget(); each && each != &window;
         each = each->parentWidget()) {
        if (auto *area = qobject_cast<QScrollArea *>(each)) {
            area->ensureWidgetVisible(widget);
        }
    }
    const auto picture = [&window, widget] {
        const QRect at(widget->mapTo(&window, QPoint()), widget->size());
        return window.grab(at).toImage().convertToFormat(QImage::Format_RGB32);
    };
    widget->clearFocus();
    const QImage before = picture();
    widget->setFocus(Qt::TabFocusReason);
    const QImage after = picture();
    int found = 0;
    for (int y = 0; y < before.height(); ++y) {
        const auto *was = reinterpret_cast<const QRgb *>(before.constScanLine(y));
        const auto *is = reinterpret_cast<const QRgb *>(after.constScanLine(y));
        for (int x = 0; x < before.width(); ++x) {
            found += was[x] != is[x] && contrast(was[x], is[x]) >= mark ? 1 : 0;
        }
    }
    return found;
}
} // namespace Legibility
