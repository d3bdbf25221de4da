#pragma once

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QMenu>
#include <QShortcut>
#include <QTest>
#include <QWidget>

#include <algorithm>
#include <functional>

/// What a window offers to those who hear it and to those who use it by keys; each function returns
/// what is wrong, a line each.
namespace AccessibleTree {
inline QString describe(const QAccessibleInterface &item)
{
    QString role;
    QDebug(&role).nospace() << item.role();
    const QObject *object = item.object();
    const QString type =
        object ? QString::fromLatin1(object->metaObject()->className()) : QString();
    return QStringLiteral("%1 \"%2\" %3").arg(role, item.text(QAccessible::Name), type);
}

inline bool isControl(QAccessible::Role role)
{
    static const QList<QAccessible::Role> controls = {
        QAccessible::Button,      QAccessible::ButtonMenu,   QAccessible::CheckBox,
        QAccessible::ComboBox,    QAccessible::EditableText, QAccessible::List,
        QAccessible::ListItem,    QAccessible::MenuItem,     QAccessible::ProgressBar,
        QAccessible::RadioButton, QAccessible::Table,        QAccessible::Notification,
        QAccessible::Dialog,      QAccessible::Window,       QAccessible::ColumnHeader};
    return controls.contains(role);
}

/// Calls with everything in the tree that is not hidden.
inline void walk(QAccessibleInterface *item,
                 const std::function<void(const QAccessibleInterface &)> &visit)
{
    if (!item || item->state().invisible) {
        return;
    }
    visit(*item);
    for (int i = 0; i < item->childCount(); ++i) {
        walk(item->child(i), visit);
    }
}

/// A table's row says something, be it in a single cell.
inline bool isSilentRow(const QAccessibleInterface &cell)
{
    const QAccessibleTableCellInterface *place =
        const_cast<QAccessibleInterface &>(cell).tableCellInterface();
    return place && place->columnIndex() == 0 && cell.text(QAccessible::Name).isEmpty();
}

/// Controls without a name or a fitting role, and buttons that sound alike.
inline QStringList wrongNames(QWidget &window)
{
    QStringList wrong;
    QStringList buttons;
    walk(QAccessible::queryAccessibleInterface(&window), [&](const QAccessibleInterface &item) {
        const QAccessible::Role role = item.role();
        const bool isFocusable = item.state().focusable;
        const bool isVague = role == QAccessible::Client || role == QAccessible::NoRole;
        const QString name = item.text(QAccessible::Name).trimmed();
        if ((isFocusable && isVague) || isSilentRow(item) ||
            (name.isEmpty() && role != QAccessible::Cell && (isFocusable || isControl(role)))) {
            wrong.append(describe(item));
        }
        if (isFocusable && qobject_cast<QAbstractButton *>(item.object())) {
            if (buttons.contains(name)) {
                wrong.append(QStringLiteral("twice: ") + describe(item));
            }
            buttons.append(name);
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
    QWidgetList found;
    for (QWidget *each : window.findChildren<QWidget *>()) {
        const bool ownsFocus = (each->focusPolicy() & Qt::TabFocus) && !each->focusProxy();
        if (ownsFocus && each->isVisible() && each->isEnabled() && each->window() == &window) {
            found.append(each);
        }
    }
    return found;
}

/// What the keyboard comes past from where it is, until it is back or has gone too far.
inline QWidgetList tabWalk(QWidget &window, Qt::Key key, qsizetype longest,
                           const std::function<void(QWidget *, QWidget *)> &step = {})
{
    QWidgetList walked;
    QWidget *first = window.focusWidget();
    QWidget *at = first;
    do {
        walked.append(at);
        QTest::keyClick(at, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
        if (step) {
            step(at, window.focusWidget());
        }
        at = window.focusWidget();
    } while (at != first && walked.size() <= longest);
    return walked;
}

/// Whether a step of the keyboard goes up or to the left; up to the right is the next column.
inline bool isJump(const QRect &from, const QRect &to)
{
    const bool isUp = to.bottom() < from.top() && to.left() < from.right();
    const bool isSameRow = to.top() < from.bottom() && from.top() < to.bottom();
    return isUp || (isSameRow && to.right() < from.left());
}

inline QString nameOf(QWidget *widget)
{
    return describe(*QAccessible::queryAccessibleInterface(widget));
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
    QStringList jumps;
    QWidgetList there = tabWalk(window, Qt::Key_Tab, longest, [&](QWidget *from, QWidget *to) {
        if (isJump(placeIn(window, from), placeIn(window, to))) {
            jumps.append(QStringLiteral("jump: %1 -> %2").arg(nameOf(from), nameOf(to)));
        }
    });
    QStringList wrong = jumps.size() > 1 ? jumps : QStringList();
    if (there.size() > longest) {
        wrong.append(QStringLiteral("trap: ") + nameOf(there.last()));
    }
    for (QWidget *stop : stops) {
        const auto isAt = [stop](const QWidget *at) {
            return stop == at || stop->isAncestorOf(at);
        };
        if (std::ranges::none_of(there, isAt)) {
            wrong.append(QStringLiteral("missed: ") + nameOf(stop));
        }
    }
    const QWidgetList back = tabWalk(window, Qt::Key_Backtab, longest);
    std::reverse(there.begin() + 1, there.end());
    if (back != there) {
        wrong.append(QStringLiteral("the way back differs"));
    }
    return wrong;
}

inline QStringList twice(QStringList keys)
{
    keys.removeAll(QString());
    QStringList unique = keys;
    unique.removeDuplicates();
    for (const QString &key : unique) {
        keys.removeOne(key);
    }
    return keys;
}

/// Key sequences with two meanings.
inline QStringList collidingKeys(const QWidget &window)
{
    QStringList keys;
    const auto add = [&keys](const QList<QKeySequence> &some) {
        for (const QKeySequence &each : some) {
            keys.append(each.toString());
        }
    };
    for (const QAction *action : window.findChildren<QAction *>()) {
        if (!action->associatedObjects().isEmpty() &&
            action->shortcutContext() != Qt::WidgetShortcut) {
            add(action->shortcuts());
        }
    }
    for (const QShortcut *shortcut : window.findChildren<QShortcut *>()) {
        if (qobject_cast<QWidget *>(shortcut->parent())->isVisible() &&
            shortcut->context() != Qt::WidgetShortcut) {
            add({shortcut->key()});
        }
    }
    return twice(keys);
}

/// The letters after "&" that a menu, or a window with its menu bar, has twice.
inline QStringList collidingLetters(const QWidget &window)
{
    const auto letters = [](const QList<QAction *> &actions) {
        QStringList found;
        for (const QAction *action : actions) {
            found.append(QKeySequence::mnemonic(action->text()).toString());
        }
        return found;
    };
    QStringList wrong;
    for (const QMenu *menu : window.findChildren<QMenu *>()) {
        wrong += twice(letters(menu->actions()));
    }
    QStringList ofWindow;
    for (const QWidget *each : window.findChildren<QWidget *>()) {
        if (!each->isVisible() || qobject_cast<const QMenu *>(each)) {
            continue;
        }
        if (const auto *button = qobject_cast<const QAbstractButton *>(each)) {
            ofWindow.append(QKeySequence::mnemonic(button->text()).toString());
        } else if (each->inherits("QMenuBar")) {
            ofWindow += letters(each->actions());
        }
    }
    return wrong + twice(ofWindow);
}
} // namespace AccessibleTree
