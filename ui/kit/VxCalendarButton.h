#pragma once

#include "VxToolButton.h"

#include <QDate>

/// A button that opens a month's calendar below itself; a click or Enter on a day picks it.
class VxCalendarButton final : public VxToolButton
{
    Q_OBJECT

public:
    explicit VxCalendarButton(QWidget *parent = nullptr);

    /// The day the calendar opens on; an invalid one stands for today.
    void setDate(QDate date) { m_date = date; }

Q_SIGNALS:
    void picked(QDate date);

private:
    void openCalendar();

    QDate m_date;
};
