#include "tests/organiser/OrganiserTest.h"

#include <QAbstractItemView>
#include <QTextCharFormat>

void OrganiserTest::AddCard(int id, const QString& last, const QString& bith) {
    const QString value = bith.isNull() ? QStringLiteral("NULL") : u'\'' + bith + u'\'';
    Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, a01bith) VALUES (%1, '%2', 'Иван', %3)")
            .arg(QString::number(id), last, value));
}

void OrganiserTest::AddEvent(const QString& name, const QString& date, int period) {
    Run(QStringLiteral("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('%1', '%2', %3)")
            .arg(name, date, QString::number(period)));
}

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

QStringList OrganiserTest::Listed() {
    QStringList rows;
    for (int row = 1; row < Grid().Rows(); ++row)
        rows +=
            Grid().TextMatrix(row, 0) + u'|' + Grid().TextMatrix(row, 1) + u'|' + Grid().TextMatrix(row, 2);
    return rows;
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
