#pragma once

#include "platform/forms/FlexGrid.h"
#include "platform/forms/MonthView.h"
#include "platform/runtime/Dates.h"
#include "tests/support/WindowTest.h"

/// The organiser on a book of which each test writes cards and events; today is 15.05.2006.
class OrganiserTest : public test::WindowTest {
protected:
    static void AddCard(int id, const QString& last, const QString& bith) {
        WindowTest::AddCard(id, last, QStringLiteral("Иван"), {}, {}, bith);
    }
    void Open();

    forms::MonthView& Month() { return Control<forms::MonthView>(calendar, "mnvCalendar"); }
    forms::FlexGrid& Grid() { return Control<forms::FlexGrid>(calendar, "gridEvent"); }
    /// The bold days of the calendar, joined by blanks; a bold day outside the shown month is written in
    /// full.
    QString BoldDays();
    /// The rows of the table, the hidden number first, joined by '|'.
    QStringList Listed() { return WindowTest::Listed(Grid()); }

    /// Chooses the date as a user of the keyboard or the mouse would: the calendar tells of it.
    void GoTo(QDate date) { Month().setSelectedDate(date); }
    void ClickDay(int day, Qt::MouseButton button = Qt::LeftButton);
    void PressInCalendar(Qt::Key key);

    std::shared_ptr<forms::Form> calendar;

private:
    runtime::FixedToday m_today{QDate(2006, 5, 15)};
};
