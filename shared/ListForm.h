#pragma once

#include "platform/forms/FlexGrid.h"
#include "platform/forms/Form.h"
#include "shared/Commands.h"

#include <vector>

class QLabel;
class QLineEdit;
class FilterForm;

namespace engine {
class Recordset;
}

/// A column of a list: header, field of the statement, width in twips (0: left to the grid or the Resize
/// rule).
struct ListColumn {
    QString header;
    QString field;
    int width = 0;
    bool always = false; ///< the key: shown whatever it holds, and aligned left although it is a number; in a
                         ///< list without one all columns are the key
};

/// What makes one list differ from another.
struct ListDesign {
    QString gridName;         ///< object name of the grid
    QString contextMenu;      ///< menu of the frame that the right mouse button pops up
    QString defaultStatement; ///< what a refresh of a list that was never filled shows
    std::vector<ListColumn> columns;
    int searchColumn = 0; ///< where the list looks for what is typed on it
};

/// The list of one statement: a grid, the number of its rows, and the filter, which it owns. Fill, freeze,
/// count and Resize rule are the same for every list.
class ListForm : public forms::Form, public Commands {
    Q_OBJECT

public:
    /// True permits fills, False suppresses them, in spite of the operation's name.
    void DoNotFillGrid(bool bNeedFill) override;
    /// Runs the statement into the grid; an empty text runs the one of the last fill, or the default one. The
    /// entry that is current stays so.
    void FillGrid(const QString& strSQL) override;
    /// Brings up the paired filter, or makes a new one.
    void ShowFilter() override;
    void SetFilterPtr(std::shared_ptr<FilterForm> ptr, bool bNothing);
    /// Makes the first row of that key current, in sight. Nothing if the list does not show it.
    void MakeCurrent(const QString& key);

    const QString& CurrentSQL() const { return strCurrentSQL; }

protected:
    ListForm(forms::Design design, ListDesign list);

    virtual std::shared_ptr<FilterForm> MakeFilter() = 0;
    void SetGridHeader();
    forms::FlexGrid* Grid() const { return m_grid; }

    void CreateControls(QWidget* surface) override;
    void Form_Load() override;
    void Form_Resize() override;
    void Form_Unload() override;

private:
    void PrepareGrid(std::int64_t count);
    void FillRows(engine::Recordset& rows);

    ListDesign m_list;
    std::vector<int> m_keyColumns;
    QPointer<forms::FlexGrid> m_grid;
    QPointer<QLabel> lblRecordsNumber;
    QPointer<QLineEdit> txtRecordsNumber;

    std::shared_ptr<FilterForm> frmFilterPtr;
    QString strCurrentSQL;
    bool bFillEnabled = false;
};
