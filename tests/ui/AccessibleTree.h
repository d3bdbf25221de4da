#pragma once

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QShortcut>
#include <QTest>
#include <QWidget>

#include <algorithm>
#include <functional>

/// What a window offers to those who hear it and to those who use it by keys; each function returns
/// what is wrong, a line each.
namespace AccessibleTree {
inline QString describe(QAccessibleInterface *item)
{
    QString said;
    QDebug(&said) << item->role() << item->text(QAccessible::Name) << item->object();
    return said;
}

inline QString describe(QWidget *widget)
{
    return describe(QAccessible::queryAccessibleInterface(widget));
}

inline bool needsName(QAccessibleInterface *item)
{
    static const QSet<QAccessible::Role> roles = {
        QAccessible::Button,      QAccessible::ButtonMenu,   QAccessible::CheckBox,
        QAccessible::ComboBox,    QAccessible::EditableText, QAccessible::List,
        QAccessible::ListItem,    QAccessible::MenuItem,     QAccessible::ProgressBar,
        QAccessible::RadioButton, QAccessible::Table,        QAccessible::Notification,
        QAccessible::Dialog,      QAccessible::Window,       QAccessible::ColumnHeader};
    if (QAccessibleTableCellInterface *cell = item->tableCellInterface()) {
        return cell->columnIndex() == 0; // a table's row says something, be it in a single cell
    }
    return roles.contains(item->role()) || item->state().focusable;
}

/// Calls with everything in the tree that is not hidden.
inline void walk(QAccessibleInterface *item,
                 const std::function<void(QAccessibleInterface *)> &visit)
{
    if (!item || item->state().invisible) {
        return;
    }
    visit(item);
    for (int i = 0; i < item->childCount(); ++i) {
        walk(item->child(i), visit);
    }
}

/// Controls without a name or a fitting role, and buttons that sound alike.
inline QStringList wrongNames(QWidget &window)
{
    QStringList wrong;
    QSet<QString> buttons;
    walk(QAccessible::queryAccessibleInterface(&window), [&](QAccessibleInterface *item) {
        const bool isVague =
            item->role() == QAccessible::Client || item->role() == QAccessible::NoRole;
        const bool isFocusable = item->state().focusable;
        const QString name = item->text(QAccessible::Name).trimmed();
        if ((isFocusable && isVague) || (name.isEmpty() && needsName(item))) {
            wrong.append(describe(item));
        }
        if (isFocusable && qobject_cast<QAbstractButton *>(item->object())) {
            if (buttons.contains(name)) {
                wrong.append(QStringLiteral("twice: ") + describe(item));
            }
            buttons.insert(name);
        }
    });
    return wrong;
}

inline QRect placeIn(const QWidget &window, const QWidget *widget)
{
    return {widget->mapTo(&window, QPoint()), widget->size()};
}

/// The controls that Tab has to reach.
inline QWidgetList tabStops(const QWidget &window)
{
    QWidgetList found = window.findChildren<QWidget *>();
    found.removeIf([&window](const QWidget *each) {
        const bool ownsFocus = (each->focusPolicy() & Qt::TabFocus) && !each->focusProxy();
        return !ownsFocus || !each->isVisible() || !each->isEnabled() || each->window() != &window;
    });
    return found;
}

/// Whether a step of the keyboard goes up or to the left; up to the right is the next column.
inline bool isJump(const QRect &from, const QRect &to)
{
    const bool isUp = to.bottom() < from.top() && to.left() < from.right();
    const bool isSameRow = to.top() < from.bottom() && from.top() < to.bottom();
    return isUp || (isSameRow && to.right() < from.left());
}

struct Walk
{
    QWidgetList past;  ///< what the keyboard comes past, until it is back or has gone too far
    QStringList jumps; ///< measured at each step, since areas scroll meanwhile
};

inline Walk tabWalk(QWidget &window, bool forward, qsizetype longest)
{
    Walk walk;
    QWidget *at = window.focusWidget();
    do {
        walk.past.append(at);
        QTest::keyClick(at, forward ? Qt::Key_Tab : Qt::Key_Backtab,
                        forward ? Qt::NoModifier : Qt::ShiftModifier);
        QWidget *next = window.focusWidget();
        if (isJump(placeIn(window, at), placeIn(window, next))) {
            walk.jumps.append(QStringLiteral("jump: %1 -> %2").arg(describe(at), describe(next)));
        }
        at = next;
    } while (at != walk.past.first() && walk.past.size() <= longest);
    return walk;
}

/// Widgets that Tab misses or does not leave, jumps beside the one that closes the circle, and a
/// way back that differs.
inline QStringList wrongTabs(QWidget &window)
{
    const QWidgetList stops = tabStops(window);
    if (stops.isEmpty()) { // a menu
        return {};
    }
    const qsizetype longest = stops.size() + 100; // what has an order of its own has more
    stops.first()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab); // a view may hand the keyboard on
    Walk there = tabWalk(window, true, longest);
    QStringList wrong = there.jumps.size() > 1 ? there.jumps : QStringList();
    if (there.past.size() > longest) {
        wrong.append(QStringLiteral("trap: ") + describe(there.past.last()));
    }
    for (QWidget *stop : stops) {
        if (std::ranges::none_of(there.past, [stop](const QWidget *at) {
                return stop == at || stop->isAncestorOf(at);
            })) {
            wrong.append(QStringLiteral("missed: ") + describe(stop));
        }
    }
    std::reverse(there.past.begin() + 1, there.past.end());
    if (tabWalk(window, false, longest).past != there.past) {
        wrong.append(QStringLiteral("the way back differs"));
    }
    return wrong;
}

/// The keys after their first time.
inline QStringList twice(QStringList keys)
{
    QSet<QString> seen;
    keys.removeIf([&seen](const QString &key) {
        const bool isNew = !seen.contains(key);
        seen.insert(key);
        return isNew || key.isEmpty();
    });
    return keys;
}

/// Key sequences with two meanings.
inline QStringList collidingKeys(const QWidget &window)
{
    QStringList keys;
    for (const QAction *action : window.findChildren<QAction *>()) {
        if (!action->associatedObjects().isEmpty() &&
            action->shortcutContext() != Qt::WidgetShortcut) {
            keys += QKeySequence::listToString(action->shortcuts()).split(QStringLiteral("; "));
        }
    }
    for (const QShortcut *shortcut : window.findChildren<QShortcut *>()) {
        if (qobject_cast<QWidget *>(shortcut->parent())->isVisible() &&
            shortcut->context() != Qt::WidgetShortcut) {
            keys.append(shortcut->key().toString());
        }
    }
    return twice(keys);
}

/// The letters after "&" that a menu, or a window with its menu bar, has twice.
inline QStringList collidingLetters(const QWidget &window)
{
    const auto letter = [](const auto *labelled) {
        return QKeySequence::mnemonic(labelled->text()).toString();
    };
    const auto letters = [&letter](const QWidget *menu) {
        QStringList found;
        for (const QAction *action : menu->actions()) {
            found.append(letter(action));
        }
        return found;
    };
    QStringList ofWindow;
    for (const QMenuBar *bar : window.findChildren<QMenuBar *>()) {
        ofWindow += letters(bar);
    }
    for (const QAbstractButton *button : window.findChildren<QAbstractButton *>()) {
        ofWindow.append(button->isVisible() ? letter(button) : QString());
    }
    QStringList wrong = twice(ofWindow);
    for (const QMenu *menu : window.findChildren<QMenu *>()) {
        wrong += twice(letters(menu));
    }
    return wrong;
}
} // namespace AccessibleTree
