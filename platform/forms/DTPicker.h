#pragma once

#include <QDateEdit>

namespace forms {

/// A field for one date, typed as day, month and year or picked from a calendar. The part at the cursor is
/// selected, what is typed takes its place, and a full part leads on to the next. A day typed before its
/// month waits for it: 31.12 can be typed over a date in February. F4 and Alt+Down open the calendar.
class DTPicker : public QDateEdit {
    Q_OBJECT

public:
    explicit DTPicker(QWidget* parent = nullptr);

    /// The date as the field shows it: what the user is typing is taken over first.
    QDate Value();
    /// Failure 35773 outside 1.1.1753 to 31.12.9999.
    void SetValue(QDate date);

    void stepBy(int steps) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void OpenCalendar();
    bool HandleTyping(const QKeyEvent& event);
    void TypeDigit(QChar digit);
    void ShowTyped();
    /// Takes over the typed digits; false if the part cannot have that number.
    bool Commit();
    void MoveTo(int section);

    QString m_typed;     ///< digits of the current part
    QDate m_dateBefore;  ///< the date when the calendar was opened, which Esc brings back
    QDate m_typedDate;   ///< the date after the last part that was typed
    int m_wantedDay = 0; ///< the day of m_typedDate as it was typed, perhaps too large for its month
};

} // namespace forms
