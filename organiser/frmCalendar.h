#pragma once

#include "platform/forms/Form.h"
#include "shared/Commands.h"

namespace forms {
class FlexGrid;
class MonthView;
} // namespace forms

/// The organiser: a month with bold days, and a table of what falls on the selected one. Both are built anew
/// from the database at every refresh.
class frmCalendar : public forms::Form, public Commands {
    Q_OBJECT

public:
    frmCalendar();

    /// Adds an event on the selected date, or, with 0, changes the event of the table's current row.
    void EditEvent(int nType) override;
    /// Deletes the event of the table's current row after asking.
    void DeleteEvent() override;

protected:
    void CreateControls(QWidget* surface) override;
    void Form_Activate() override;

private:
    void FillDaysBold();
    using Commands::FillGrid; // of the lists
    void FillGrid();
    void SetGridHeader();
    void Refresh();
    void MarkDaysOfMonth();
    void ListDay();
    QStringList ListedEvents() const;

    QPointer<forms::MonthView> mnvCalendar;
    QPointer<forms::FlexGrid> gridEvent;
    int m_gridWidth = 0; ///< twips
};
