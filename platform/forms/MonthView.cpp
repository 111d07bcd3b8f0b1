#include "platform/forms/MonthView.h"

#include "platform/forms/Colours.h"
#include "platform/forms/DateRange.h"
#include "platform/runtime/Dates.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QPointer>
#include <QScopedValueRollback>
#include <QTextCharFormat>
#include <QToolButton>

#include <algorithm>

namespace forms {

namespace {

/// Colours that read well on the ground of the calendar, light or dark.
struct DayColours {
    QColor bold;
    QColor weekend;
};

DayColours ColoursOn(const QPalette& palette) {
    if (IsDark(palette.color(QPalette::Base)))
        return {QColor(0x8a, 0xb8, 0xff), QColor(0xff, 0x9a, 0x8a)};
    return {QColor(0x0b, 0x4f, 0xc4), QColor(0xb0, 0x20, 0x10)};
}

QPixmap Chevron(bool back, const QColor& colour, qreal ratio) {
    constexpr int Size = 16;
    QPixmap picture(QSize(Size, Size) * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const qreal tip = back ? 5.5 : 10.5;
    const qreal ends = Size - tip;
    painter.drawPolyline(QPolygonF{QPointF(ends, 3), QPointF(tip, 8), QPointF(ends, 13)});
    return picture;
}

QDate SameDayIn(int year, int month, int day) {
    return {year, month, std::min(day, QDate(year, month, 1).daysInMonth())};
}

} // namespace

MonthView::MonthView(QWidget* parent)
    : QCalendarWidget(parent) {
    setLocale(QLocale(QLocale::Russian, QLocale::Russia));
    setFirstDayOfWeek(Qt::Monday);
    setVerticalHeaderFormat(NoVerticalHeader);
    setDateEditEnabled(false);
    setDateRange(FirstControlDate(), LastControlDate());
    ApplyColours();
    MakeArrows();

    connect(this, &QCalendarWidget::currentPageChanged, this, &MonthView::FollowPage);
    connect(this, &QCalendarWidget::selectionChanged, this, &MonthView::FollowSelection);
    connect(this, &QCalendarWidget::selectionChanged, this, &MonthView::NameValue);
    for (QWidget* part : findChildren<QWidget*>())
        part->installEventFilter(this);
    NameValue();
}

void MonthView::SetValue(QDate date) {
    CheckControlDate(date);
    const QScopedValueRollback setting(m_settingValue, true);
    setSelectedDate(date);
    setCurrentPage(date.year(), date.month());
}

void MonthView::SetDayBold(QDate date, bool bold) {
    if (IsShown(date) && DayBold(date) != bold)
        setDateTextFormat(date, bold ? BoldFormat() : QTextCharFormat());
    if (date == Value()) // when all days have been gone through
        QMetaObject::invokeMethod(this, &MonthView::NameValue, Qt::QueuedConnection);
}

bool MonthView::DayBold(QDate date) const {
    return dateTextFormat(date).fontWeight() == QFont::Bold;
}

bool MonthView::eventFilter(QObject* watched, QEvent* event) {
    // The calendar itself may watch the whole application while its year is being typed.
    if (QCalendarWidget::eventFilter(watched, event))
        return true;
    const auto* part = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::KeyPress && part && part == focusProxy())
        return TurnYear(*static_cast<QKeyEvent*>(event));
    if (event->type() != QEvent::MouseButtonRelease || m_passingOn || !part || !isAncestorOf(part))
        return false;

    // The release is passed on first: what the click selects is known before MouseUp tells of it.
    const QPointer<MonthView> self(this);
    m_passingOn = true;
    QCoreApplication::sendEvent(watched, event);
    if (self) {
        m_passingOn = false;
        Q_EMIT MouseUp();
    }
    return true;
}

void MonthView::changeEvent(QEvent* event) {
    QCalendarWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        ApplyColours();
        MakeArrows();
    }
}

void MonthView::paintEvent(QPaintEvent* event) {
    QCalendarWidget::paintEvent(event);
    if (contentsMargins().isNull())
        return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void MonthView::paintCell(QPainter* painter, const QRect& rect, QDate date) const {
    QCalendarWidget::paintCell(painter, rect, date);
    const bool selected = date == selectedDate();
    painter->save();
    if (selected && !hasFocus()) {
        QFont font = painter->font();
        font.setBold(DayBold(date));
        painter->setFont(font);
        painter->fillRect(rect, PaleSelection(palette()));
        painter->setPen(palette().color(QPalette::Text));
        painter->drawText(rect, Qt::AlignCenter, QString::number(date.day()));
    }
    if (date == runtime::Today()) {
        const QColor ring = selected && hasFocus() ? palette().color(QPalette::HighlightedText)
                                                   : ColoursOn(palette()).weekend;
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(ring, 1.5));
        painter->drawRoundedRect(QRectF(rect).adjusted(1.5, 1.5, -1.5, -1.5), 3, 3);
    }
    painter->restore();
}

bool MonthView::IsShown(QDate date) const {
    return date.isValid() && date.year() == yearShown() && date.month() == monthShown();
}

void MonthView::FollowPage() {
    setDateTextFormat(QDate(), QTextCharFormat());
    if (!m_settingValue && !IsShown(Value()))
        setSelectedDate(SameDayIn(yearShown(), monthShown(), Day()));
}

void MonthView::FollowSelection() {
    if (m_settingValue)
        return;
    if (!IsShown(Value()))
        setCurrentPage(Year(), Month());
    Q_EMIT SelChange();
}

bool MonthView::TurnYear(const QKeyEvent& key) {
    const bool back = key.key() == Qt::Key_PageUp;
    if (key.modifiers() != Qt::ControlModifier || (!back && key.key() != Qt::Key_PageDown))
        return false;
    const int year = Year() + (back ? -1 : 1);
    if (year >= minimumDate().year() && year <= maximumDate().year())
        setSelectedDate(SameDayIn(year, Month(), Day()));
    return true;
}

void MonthView::NameValue() {
    QString name =
        QStringLiteral("Календарь: ") + locale().toString(Value(), QStringLiteral("d MMMM yyyy, dddd"));
    if (DayBold(Value()))
        name += MarkedText();
    if (name == accessibleName())
        return;
    setAccessibleName(name);
    if (QWidget* days = focusProxy()) // it has the keyboard
        days->setAccessibleName(name);
}

void MonthView::ApplyColours() {
    QTextCharFormat weekend;
    weekend.setForeground(ColoursOn(palette()).weekend);
    setWeekdayTextFormat(Qt::Saturday, weekend);
    setWeekdayTextFormat(Qt::Sunday, weekend);

    const QMap<QDate, QTextCharFormat> formats = dateTextFormat();
    for (auto day = formats.cbegin(); day != formats.cend(); ++day)
        setDateTextFormat(day.key(), BoldFormat());
}

/// As the name of the month between them: in the title's colour, under the pointer in that of a button.
void MonthView::MakeArrows() {
    const auto make = [this](const QString& name, bool back, const QString& text) {
        auto* button = findChild<QToolButton*>(name);
        if (!button)
            return;
        const qreal ratio = devicePixelRatioF();
        QIcon icon;
        icon.addPixmap(Chevron(back, palette().color(QPalette::HighlightedText), ratio), QIcon::Normal);
        icon.addPixmap(Chevron(back, palette().color(QPalette::ButtonText), ratio), QIcon::Active);
        button->setIcon(icon);
        button->setAccessibleName(text);
        button->setToolTip(text);
    };
    make(QStringLiteral("qt_calendar_prevmonth"), true, QStringLiteral("Предыдущий месяц"));
    make(QStringLiteral("qt_calendar_nextmonth"), false, QStringLiteral("Следующий месяц"));
}

QString MonthView::MarkedText() {
    return QStringLiteral(", есть события");
}

bool MonthView::IsTitle(const QWidget* widget) {
    return widget && widget->objectName() == u"qt_calendar_monthbutton" &&
           qobject_cast<const MonthView*>(widget->parentWidget()->parentWidget());
}

QTextCharFormat MonthView::BoldFormat() const {
    QTextCharFormat format;
    format.setFontWeight(QFont::Bold);
    format.setForeground(ColoursOn(palette()).bold);
    return format;
}

} // namespace forms
