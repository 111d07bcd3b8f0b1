#include "tests/organiser/OrganiserTest.h"

#include <QAbstractItemView>
#include <QTextCharFormat>

void OrganiserTest::Open() {
    Choose("mnuBookCalendar");
    calendar = Last("frmCalendar");
}

QString OrganiserTest::BoldDays() {
    QStringList days;
    const auto formats = Month().dateTextFormat();
    for (auto day = formats.cbegin(); day != formats.cend(); ++day) {
        if (day->fontWeight() != QFont::Bold)
            continue;
        const bool shown =
            day.key().month() == Month().monthShown() && day.key().year() == Month().yearShown();
        days += shown ? QString::number(day.key().day()) : day.key().toString(Qt::ISODate);
    }
    return days.join(u' ');
}

void OrganiserTest::ClickDay(int day, Qt::MouseButton button) {
    auto& view = ControlOf<QAbstractItemView>(Month(), "qt_calendar_calendarview");
    const int before = QDate(Month().yearShown(), Month().monthShown(), 1).dayOfWeek() - 1;
    const int firstRow = view.model()->rowCount() - 6; // behind the names of the days
    const int firstColumn = view.model()->columnCount() - 7;
    // A month that begins on the first column is shown from the second week on.
    const int place = day - 1 + (before == 0 ? 7 : before);
    const QModelIndex index = view.model()->index(firstRow + place / 7, firstColumn + place % 7);
    ASSERT_EQ(index.data().toInt(), day);
    QTest::mouseClick(view.viewport(), button, Qt::NoModifier, view.visualRect(index).center());
}

void OrganiserTest::PressInCalendar(Qt::Key key) {
    QTest::keyClick(&ControlOf<QAbstractItemView>(Month(), "qt_calendar_calendarview"), key);
}
