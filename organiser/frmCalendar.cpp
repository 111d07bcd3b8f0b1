#include "organiser/frmCalendar.h"

#include "organiser/EventDates.h"
#include "organiser/frmEvent.h"
#include "platform/forms/Controls.h"
#include "platform/forms/FlexGrid.h"
#include "platform/forms/MdiForm.h"
#include "platform/forms/MonthView.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/Twips.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"
#include "shared/Declaration.h"

#include <QGridLayout>
#include <QLabel>

namespace {

constexpr int GridWidth = 5655; // twips; more with large letters
constexpr int NoEvent = -1;     // what a birthday has in the column of event numbers

enum Column { ColId, ColName, ColKind };

forms::Design WindowDesign() {
    forms::Design design;
    design.name = QStringLiteral("frmCalendar");
    design.caption = QStringLiteral("Органайзер");
    design.border = forms::Border::Fixed;
    return design;
}

/// The hint fills the room beside the calendar. If large letters leave too little, it takes what it needs to
/// be no higher than the calendar.
int HintWidth(const QLabel& hint, int room, int height) {
    constexpr int LeastLetters = 24;
    constexpr int MostLetters = 48;
    const int letter = hint.fontMetrics().averageCharWidth();
    if (room >= LeastLetters * letter)
        return room;
    int width = LeastLetters * letter;
    while (width < MostLetters * letter && hint.heightForWidth(width) > height)
        width += letter;
    return width;
}

engine::Recordset OpenBirthdays() {
    return gDatabase->OpenRecordset(QStringLiteral("SELECT * FROM a01 WHERE a01bith IS NOT NULL"),
                                    engine::dbOpenDynaset);
}

/// Goes through all rows and hands over their date texts, empty ones left out. The counter is a 16-bit
/// number: a longer table is an overflow before its first row.
template <class Visitor>
void ForEachDateText(engine::Recordset& rows, QStringView dateField, Visitor visit) {
    if (rows.RecordCount() == 0)
        return;
    rows.MoveLast();
    rows.MoveFirst();
    const runtime::Int16 count(rows.RecordCount());
    const engine::Field date = rows.Fields(dateField);
    for (int row = 1; row <= count; ++row) {
        const QString text = date.Text();
        if (!text.isEmpty())
            visit(text);
        rows.MoveNext();
    }
}

} // namespace

frmCalendar::frmCalendar()
    : Form(WindowDesign()) {
}

void frmCalendar::CreateControls(QWidget* surface) {
    mnvCalendar = forms::Named(new forms::MonthView(surface), QStringLiteral("mnvCalendar"));

    QLabel* Label1 = forms::MakeLabel(
        QStringLiteral("Label1"),
        QStringLiteral("Выберите дату на элементе слева. Если за этой датой закреплены какие-либо события, "
                       "то они будут отражены в таблице снизу. Чтобы отредактировать имеющееся или добавить "
                       "новое событие, щелкните правой кнопкой на таблице снизу."),
        surface);
    Label1->setWordWrap(true);
    Label1->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    Label1->setBuddy(mnvCalendar);
    constexpr int Gap = 9;
    const QSize calendar = mnvCalendar->sizeHint();
    const int hintWidth =
        HintWidth(*Label1, forms::ToPixels(GridWidth) - calendar.width() - Gap, calendar.height());
    Label1->setFixedWidth(hintWidth);
    Label1->setMinimumHeight(Label1->heightForWidth(hintWidth));

    gridEvent = forms::Named(new forms::FlexGrid(2, 3, surface), QStringLiteral("gridEvent"));
    gridEvent->setAccessibleName(QStringLiteral("События выбранного дня"));
    m_gridWidth = std::max(GridWidth, forms::ToTwips(calendar.width() + Gap + hintWidth));
    gridEvent->SetSearchCol(ColName);
    gridEvent->setFixedWidth(forms::ToPixels(m_gridWidth));
    gridEvent->setMinimumHeight(gridEvent->fontMetrics().height() * 11);

    auto* layout = new QGridLayout(surface);
    layout->setSpacing(Gap);
    layout->addWidget(mnvCalendar, 0, 0, Qt::AlignTop);
    layout->addWidget(Label1, 0, 1, Qt::AlignTop);
    layout->addWidget(gridEvent, 1, 0, 1, 2, Qt::AlignHCenter);

    SetGridHeader();
    On(mnvCalendar, &forms::MonthView::SelChange, [this] { Refresh(); });
    On(mnvCalendar, &forms::MonthView::MouseUp, [this] { Refresh(); });
    On(gridEvent, &forms::FlexGrid::ContextMenuRequested,
       [](QPoint position) { forms::PopupMenu(QStringLiteral("mnuCalendar"), position); });
}

void frmCalendar::Form_Activate() {
    mnvCalendar->SetValue(runtime::Today());
    Refresh();
}

void frmCalendar::Refresh() {
    FillDaysBold();
    FillGrid();
}

void frmCalendar::FillDaysBold() {
    forms::Attempt(Head("FillDaysBold"), [this] { MarkDaysOfMonth(); });
}

void frmCalendar::MarkDaysOfMonth() {
    const int year = mnvCalendar->Year();
    const int month = mnvCalendar->Month();
    const QDate first(year, month, 1);
    for (QDate day = first; day.month() == month; day = day.addDays(1))
        mnvCalendar->SetDayBold(day, false);

    engine::Recordset births = OpenBirthdays();
    engine::Recordset events =
        gDatabase->OpenRecordset(QStringLiteral("SELECT * FROM a03"), engine::dbOpenDynaset);

    // A text that is no date and a day that the shown year lacks mark nothing.
    ForEachDateText(births, u"a01bith", [&](const QString& text) {
        const auto birth = runtime::TryTextToDate(text);
        if (birth && birth->date().month() == month)
            mnvCalendar->SetDayBold(QDate(year, month, birth->date().day()), true);
    });
    const auto markEvent = [&, period = events.Fields(u"a03evpr")](const QString& text) {
        const auto time = runtime::TryTextToDate(text);
        if (!time || time->date().month() != month)
            return;
        if (FallsInYear(time->date().year(), Periodicity(period.Value().Long()), year))
            mnvCalendar->SetDayBold(QDate(year, month, time->date().day()), true);
    };
    ForEachDateText(events, u"a03evdt", markEvent);
}

void frmCalendar::SetGridHeader() {
    const int columns = gridEvent->Cols() - 1;
    const int width = static_cast<int>(runtime::RoundHalfEven((m_gridWidth - 350.0) / columns));
    gridEvent->SetColWidth(ColId, 0);
    for (int column = 1; column <= columns; ++column)
        gridEvent->SetColWidth(column, width);
    gridEvent->SetTextMatrix(0, ColId, u"ИД события");
    gridEvent->SetTextMatrix(0, ColName, u"Название");
    gridEvent->SetTextMatrix(0, ColKind, u"Событие");
}

void frmCalendar::FillGrid() {
    forms::Attempt(Head("FillGrid"), [this] { ListDay(); });
}

void frmCalendar::ListDay() {
    engine::Recordset births = OpenBirthdays();
    engine::Recordset events =
        gDatabase->OpenRecordset(QStringLiteral("SELECT * FROM a03 ORDER BY a03evnm"), engine::dbOpenDynaset);
    const forms::FlexGrid::Filling filling(*gridEvent, {ColId});
    gridEvent->Clear();
    gridEvent->SetRows(2);
    SetGridHeader();

    runtime::Int16 row; // the first match fills the blank row
    const auto putRow = [&](const QString& id, const QString& name, const QString& kind) {
        ++row;
        if (row > 1)
            gridEvent->SetRows(gridEvent->Rows() + 1);
        gridEvent->SetTextMatrix(row, ColId, id);
        gridEvent->SetTextMatrix(row, ColName, name);
        gridEvent->SetTextMatrix(row, ColKind, kind);
    };

    const QDate shown = mnvCalendar->Value();
    ForEachDateText(births, u"a01bith", [&](const QString& text) {
        const QDate birth = runtime::TextToDate(text).date();
        if (birth.day() != shown.day() || birth.month() != shown.month())
            return;
        const QString name = births.Fields(u"a01last").Text() + u' ' + births.Fields(u"a01frst").Text() +
                             u' ' + births.Fields(u"a01midl").Text();
        putRow(QString::number(NoEvent), name, QStringLiteral("День рожденья"));
    });
    ForEachDateText(events, u"a03evdt", [&](const QString& text) {
        const QDate date = runtime::TextToDate(text).date();
        const auto periodicity = Periodicity(events.Fields(u"a03evpr").Value().Long());
        if (date.day() != shown.day() || date.month() != shown.month() ||
            !FallsInYear(date.year(), periodicity, shown.year()))
            return;
        putRow(events.Fields(u"a03evid").Text(), events.Fields(u"a03evnm").Text(),
               periodicity == Periodicity::OneOff ? QStringLiteral("Разовое")
                                                  : QStringLiteral("Периодическое"));
    });
}

QStringList frmCalendar::ListedEvents() const {
    QStringList ids;
    for (int row = 1; row < gridEvent->Rows(); ++row)
        ids += gridEvent->TextMatrix(row, ColId);
    return ids;
}

void frmCalendar::EditEvent(int nType) {
    const QStringList before = ListedEvents();
    if (nType != 0) {
        General::ShowEventDialog(QStringLiteral("Добавление события"), mnvCalendar->Value(), NoEvent);
    } else {
        const QString id = gridEvent->TextMatrix(gridEvent->Row(), ColId);
        if (!id.isEmpty() && runtime::TextToLong(id) > NoEvent) {
            General::ShowEventDialog(QStringLiteral("Редактирование события"), mnvCalendar->Value(),
                                     runtime::TextToLong(id));
        }
    }
    Refresh();
    if (nType == 0)
        return;
    const QStringList after = ListedEvents();
    for (int row = 1; row <= after.size(); ++row) // what has been added is current
        if (!before.contains(after[row - 1]) && !after[row - 1].isEmpty())
            gridEvent->SetRow(row);
}

void frmCalendar::DeleteEvent() {
    const bool deleted = forms::Attempt(Head("DeleteEvent"), [this] {
        const QString id = gridEvent->TextMatrix(gridEvent->Row(), ColId);
        if (id.isEmpty() || runtime::TextToLong(id) <= NoEvent)
            return false;
        if (!forms::AskNo(QStringLiteral("Вы действительно хотите удалить это событие?")))
            return false;
        gDatabase->Execute(QStringLiteral("DELETE FROM a03 WHERE a03evid = ") + id, engine::dbFailOnError);
        WriteToDisk(); // no box follows that would see to it
        return true;
    });
    if (deleted)
        Refresh();
}
