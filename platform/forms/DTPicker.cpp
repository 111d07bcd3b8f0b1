#include "platform/forms/DTPicker.h"

#include "platform/forms/DateRange.h"
#include "platform/forms/MonthView.h"
#include "platform/runtime/Dates.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionComboBox>

#include <algorithm>
#include <array>

namespace forms {

namespace {

enum Part { DayPart, MonthPart, YearPart };

struct PartLook {
    int start;      ///< place in the text
    int length;     ///< most digits
    int roomBehind; ///< greatest number that another digit can follow
};
constexpr std::array<PartLook, 3> Looks = {{{0, 2, 3}, {3, 2, 1}, {6, 4, 999}}};

bool IsFull(int part, const QString& digits) {
    const PartLook& look = Looks[static_cast<std::size_t>(part)];
    return digits.size() == look.length || digits.toInt() > look.roomBehind;
}

} // namespace

DTPicker::DTPicker(QWidget* parent)
    : QDateEdit(parent) {
    setLocale(QLocale(QLocale::Russian, QLocale::Russia));
    setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    setDateRange(FirstControlDate(), LastControlDate());
    setCalendarPopup(true);
    setCalendarWidget(new MonthView);
    calendarWidget()->setContentsMargins(1, 1, 1, 1);
    calendarWidget()->focusProxy()->installEventFilter(this);
    lineEdit()->installEventFilter(this);
}

QDate DTPicker::Value() {
    Commit();
    interpretText();
    return date();
}

void DTPicker::SetValue(QDate date) {
    CheckControlDate(date);
    m_typed.clear();
    setDate(date);
}

void DTPicker::stepBy(int steps) {
    Commit();
    QDateEdit::stepBy(steps);
}

bool DTPicker::eventFilter(QObject* watched, QEvent* event) {
    if (watched != lineEdit()) {
        // The field has followed the calendar from day to day.
        if (event->type() == QEvent::KeyPress &&
            static_cast<QKeyEvent*>(event)->matches(QKeySequence::Cancel))
            setDate(m_dateBefore);
    } else if (event->type() == QEvent::MouseButtonPress)
        Commit();
    else if (event->type() == QEvent::MouseButtonRelease && !lineEdit()->hasSelectedText())
        MoveTo(currentSectionIndex());
    return QDateEdit::eventFilter(watched, event);
}

void DTPicker::mousePressEvent(QMouseEvent* event) {
    Commit();
    m_dateBefore = date();
    QDateEdit::mousePressEvent(event);
}

void DTPicker::focusOutEvent(QFocusEvent* event) {
    Commit();
    QDateEdit::focusOutEvent(event);
}

bool DTPicker::focusNextPrevChild(bool next) {
    Commit();
    // Tab leaves the field; the arrow keys go through its parts.
    return QWidget::focusNextPrevChild(next); // NOLINT(bugprone-parent-virtual-call)
}

void DTPicker::keyPressEvent(QKeyEvent* event) {
    if (HandleTyping(*event)) {
        event->accept();
        return;
    }
    Commit();
    const bool opens = (event->key() == Qt::Key_F4 && event->modifiers() == Qt::NoModifier) ||
                       (event->key() == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier));
    if (opens) {
        event->accept();
        OpenCalendar();
    } else {
        QDateEdit::keyPressEvent(event);
    }
}

/// The toolkit opens it for the mouse alone.
void DTPicker::OpenCalendar() {
    QStyleOptionComboBox look;
    look.initFrom(this);
    look.editable = true;
    look.subControls = QStyle::SC_All;
    const QPointF arrow =
        style()->subControlRect(QStyle::CC_ComboBox, &look, QStyle::SC_ComboBoxArrow, this).center();
    QMouseEvent press(QEvent::MouseButtonPress, arrow, mapToGlobal(arrow), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    mousePressEvent(&press);
}

bool DTPicker::HandleTyping(const QKeyEvent& event) {
    if (event.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier))
        return false;
    const QChar sign = event.text().isEmpty() ? QChar() : event.text().front();
    if (sign >= u'0' && sign <= u'9') {
        TypeDigit(sign);
        return true;
    }
    if (!sign.isNull() && QStringLiteral(".,/- ").contains(sign)) {
        if (!m_typed.isEmpty() && Commit())
            MoveTo(currentSectionIndex() + 1);
        return true;
    }
    if (event.modifiers() & Qt::ShiftModifier)
        return false;
    switch (event.key()) {
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        if (m_typed.size() > 1) {
            m_typed.chop(1);
            ShowTyped();
        } else {
            m_typed.clear();
            setDate(date());
            MoveTo(currentSectionIndex());
        }
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
        Commit();
        MoveTo(currentSectionIndex() + (event.key() == Qt::Key_Left ? -1 : 1));
        return true;
    case Qt::Key_Home:
    case Qt::Key_End:
        Commit();
        MoveTo(event.key() == Qt::Key_Home ? DayPart : YearPart);
        return true;
    default:
        return false;
    }
}

void DTPicker::TypeDigit(QChar digit) {
    if (m_typed.isEmpty() && lineEdit()->selectedText().size() == lineEdit()->text().size())
        setCurrentSectionIndex(DayPart);
    m_typed += digit;
    const int part = currentSectionIndex();
    if (!IsFull(part, m_typed))
        ShowTyped();
    else
        MoveTo(Commit() ? part + 1 : part);
}

void DTPicker::ShowTyped() {
    const int part = currentSectionIndex();
    QString text = date().toString(QStringLiteral("dd.MM.yyyy"));
    const PartLook& look = Looks[static_cast<std::size_t>(part)];
    text.replace(look.start, look.length, m_typed);
    // The field must not read the text before the part is finished.
    const QSignalBlocker blocker(lineEdit());
    lineEdit()->setText(text);
    lineEdit()->setCursorPosition(look.start + static_cast<int>(m_typed.size()));
}

bool DTPicker::Commit() {
    if (m_typed.isEmpty())
        return true;
    const int part = currentSectionIndex();
    const int number = m_typed.toInt();
    const qsizetype digits = m_typed.size();
    m_typed.clear();

    int year = date().year();
    int month = date().month();
    int day = date() == m_typedDate ? m_wantedDay : date().day();
    switch (part) {
    case DayPart:
        day = number;
        break;
    case MonthPart:
        month = number;
        break;
    default:
        year = digits > 2 ? number : runtime::FullYear(number);
        break;
    }
    const QDate first(year, month, 1);
    const QDate typed = first.isValid() && day >= 1 && day <= 31
                            ? QDate(year, month, std::min(day, first.daysInMonth()))
                            : QDate();
    const bool taken = typed.isValid() && typed >= minimumDate() && typed <= maximumDate();
    setDate(taken ? typed : date());
    if (taken) {
        m_typedDate = typed;
        m_wantedDay = day;
    }
    MoveTo(part);
    return taken;
}

void DTPicker::MoveTo(int section) {
    const int part = std::clamp<int>(section, DayPart, YearPart);
    setCurrentSectionIndex(part);
    setSelectedSection(sectionAt(part));
}

} // namespace forms
