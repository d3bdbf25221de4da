#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include <functional>

class QMenu;

/// A menu to choose one of several values from.
namespace VxChoiceMenu {
struct Choice
{
    QString text;
    QVariant value;
};

/// Fills a menu with the choices. The one whose value is current when the menu opens is ticked;
/// none is while another value is current.
void fill(QMenu *menu, const QList<Choice> &choices, const std::function<QVariant()> &current,
          const std::function<void(const QVariant &)> &choose);
} // namespace VxChoiceMenu
