#include "VxCalendarButton.h"

#include "QSClock.h"
#include "VxIcon.h"

#include <QCalendarWidget>
#include <QLocale>
#include <QMenu>
#include <QTextCharFormat>
#include <QWidgetAction>

using namespace Qt::Literals::StringLiterals;

VxCalendarButton::VxCalendarButton(QWidget *parent) : VxToolButton(parent)
{
    setIcon(VxIcon::named(u"calendar"_s));
    setProperty("button", true);
    setToolTip(u"Pick a date from a calendar"_s);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QToolButton::clicked, this, &VxCalendarButton::openCalendar);
}

void VxCalendarButton::openCalendar()
{
    QMenu menu(this);
    auto *calendar = new QCalendarWidget(&menu);
    calendar->setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    const int em = fontMetrics().height();
    calendar->setMinimumSize(em * 20, em * 17);
    for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday}) { // red is hard to read on dark
        calendar->setWeekdayTextFormat(day, QTextCharFormat());
    }
    calendar->setSelectedDate(m_date.isValid() ? m_date : QSClock::today());
    auto *action = new QWidgetAction(&menu);
    action->setDefaultWidget(calendar);
    menu.addAction(action);
    connect(&menu, &QMenu::aboutToShow, calendar, [calendar] { calendar->setFocus(); });
    const auto pick = [this, &menu](QDate date) {
        menu.close();
        Q_EMIT picked(date);
    };
    connect(calendar, &QCalendarWidget::clicked, &menu, pick);
    connect(calendar, &QCalendarWidget::activated, &menu, pick);
    menu.exec(mapToGlobal(QPoint(0, height())));
}
