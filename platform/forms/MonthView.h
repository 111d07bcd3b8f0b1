#pragma once

#include <QCalendarWidget>

namespace forms {

/// A calendar of one month with a selected day, its Value. The shown month is always the month of Value:
/// turning the page takes the day along, to the same day of the new month or, if that has none, to its last
/// one. By keyboard the arrows go by days and weeks, Home and End to the ends of the month, PgUp and PgDn by
/// months, with Ctrl by years. It has a frame where its contents margins leave room for one. Assistive tools
/// read the day out with the name of the calendar.
class MonthView : public QCalendarWidget {
    Q_OBJECT

public:
    explicit MonthView(QWidget* parent = nullptr);

    QDate Value() const { return selectedDate(); }
    /// Raises no SelChange. Failure 35773 outside 1.1.1753 to 31.12.9999.
    void SetValue(QDate date);

    int Day() const { return Value().day(); }
    int Month() const { return Value().month(); }
    int Year() const { return Value().year(); }

    /// Sets a day of the shown month off from the others, or takes that back; days of other months are
    /// ignored. The page forgets its bold days when it is turned.
    void SetDayBold(QDate date, bool bold);
    bool DayBold(QDate date) const;

    /// What is said of a day that is set off, behind its number or date.
    static QString MarkedText();
    /// Whether a widget is the name of the month above a calendar.
    static bool IsTitle(const QWidget* widget);

Q_SIGNALS:
    /// The user has selected another day, by mouse, keyboard or paging.
    void SelChange();
    /// A mouse button was released over the calendar, also over its arrows. Comes behind SelChange of that
    /// click.
    void MouseUp();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void paintCell(QPainter* painter, const QRect& rect, QDate date) const override;

private:
    bool IsShown(QDate date) const;
    void FollowPage();
    void FollowSelection();
    bool TurnYear(const QKeyEvent& key);
    void NameValue();
    void MakeArrows();
    void ApplyColours();
    QTextCharFormat BoldFormat() const;

    bool m_settingValue = false;
    bool m_passingOn = false;
};

} // namespace forms
