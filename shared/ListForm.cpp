#include "shared/ListForm.h"

#include "platform/forms/Controls.h"
#include "platform/forms/MdiForm.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/Twips.h"
#include "platform/runtime/Numbers.h"
#include "shared/Declaration.h"
#include "shared/FilterForm.h"

#include <QStyle>

using forms::FlexGrid;
using forms::ToPixels;

namespace {

// The Resize rule, in twips.
constexpr int GridPlace = 120;
constexpr int BesideGrid = 390;
constexpr int BelowGrid = 1080;
constexpr int LeastHeight = 2000;
constexpr int AboveCount = 200;
constexpr int BesideLabel = 100;
constexpr int LabelWidth = 1605;
constexpr int CountWidth = 495;

// The row of the count, in logical pixels: low enough to stand whole in what the rule leaves for it.
constexpr int GapBelowCount = 2;
constexpr int AroundCount = 6; ///< above and below its text together
constexpr int TextMargin = 4;  ///< between the frame of a text box and its text

std::vector<int> KeyColumns(const std::vector<ListColumn>& columns) {
    std::vector<int> keys;
    std::vector<int> all;
    for (int i = 0; i < static_cast<int>(columns.size()); ++i) {
        all.push_back(i);
        if (columns[static_cast<std::size_t>(i)].always)
            keys.push_back(i);
    }
    return keys.empty() ? all : keys;
}

/// What the box of the count needs for the longest one.
int WidthForCount(const QLineEdit& box) {
    const int frame = box.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, &box);
    return box.fontMetrics().horizontalAdvance(QStringLiteral("32767")) + 2 * (frame + TextMargin);
}

} // namespace

ListForm::ListForm(forms::Design design, ListDesign list)
    : Form(std::move(design))
    , m_list(std::move(list))
    , m_keyColumns(KeyColumns(m_list.columns)) {
}

// --- Operations

void ListForm::DoNotFillGrid(bool bNeedFill) {
    bFillEnabled = bNeedFill;
}

void ListForm::FillGrid(const QString& strSQL) {
    if (!bFillEnabled || !IsLoaded()) // a card may outlive its list
        return;
    forms::Attempt(Head("FillGrid"), [&] {
        if (!strSQL.isEmpty())
            strCurrentSQL = strSQL;
        else if (strCurrentSQL.isEmpty())
            strCurrentSQL = m_list.defaultStatement;
        engine::Recordset rows = gDatabase->OpenRecordset(strCurrentSQL, engine::dbOpenDynaset);
        if (rows.RecordCount() > 0) {
            rows.MoveLast();
            rows.MoveFirst();
        }
        const FlexGrid::Filling filling(*m_grid, m_keyColumns);
        PrepareGrid(rows.RecordCount());
        if (rows.RecordCount() > 0)
            FillRows(rows);
        rows.Close();
    });
}

void ListForm::PrepareGrid(std::int64_t count) {
    m_grid->Clear();
    SetGridHeader();
    m_grid->SetTag(QString::number(count));
    txtRecordsNumber->setText(m_grid->Tag());
    m_grid->SetRows(count == 0 ? 2 : static_cast<int>(count) + 1);
}

void ListForm::FillRows(engine::Recordset& rows) {
    const runtime::Int16 last(rows.RecordCount()); // the counter holds no more rows
    std::vector<engine::Field> fields;
    for (const ListColumn& column : m_list.columns)
        fields.push_back(rows.Fields(column.field));
    for (int row = 1; row <= last; ++row) {
        for (std::size_t column = 0; column < fields.size(); ++column)
            m_grid->SetTextMatrix(row, static_cast<int>(column), fields[column].Text());
        rows.MoveNext();
    }
}

void ListForm::MakeCurrent(const QString& key) {
    if (!IsLoaded())
        return;
    for (int row = 1; row < m_grid->Rows(); ++row)
        if (m_grid->TextMatrix(row, m_keyColumns.front()) == key)
            return m_grid->SetRow(row);
}

void ListForm::ShowFilter() {
    if (!frmFilterPtr)
        frmFilterPtr = MakeFilter();
    const std::shared_ptr<FilterForm> filter = frmFilterPtr; // its load may put another one in its place
    filter->SetVisible(true);
}

void ListForm::SetFilterPtr(std::shared_ptr<FilterForm> ptr, bool bNothing) {
    // The old one may end with this reference and call here again: the new state stands before.
    const std::shared_ptr<FilterForm> old = std::exchange(frmFilterPtr, bNothing ? nullptr : std::move(ptr));
}

// --- Window

void ListForm::CreateControls(QWidget* surface) {
    m_grid = forms::Named(new FlexGrid(2, static_cast<int>(m_list.columns.size()), surface), m_list.gridName);
    m_grid->setAccessibleName(Caption());
    m_grid->SetTag(QStringLiteral("0"));
    m_grid->SetSearchCol(m_list.searchColumn);
    lblRecordsNumber =
        forms::MakeLabel(QStringLiteral("lblRecordsNumber"), QStringLiteral("Количество записей:"), surface);
    txtRecordsNumber = forms::MakeTextBox(QStringLiteral("txtRecordsNumber"), 0, surface);
    forms::Lock(txtRecordsNumber);
    forms::NameField(txtRecordsNumber, QStringLiteral("txtRecordsNumber"), lblRecordsNumber);
    On(m_grid, &FlexGrid::ContextMenuRequested,
       [menu = m_list.contextMenu](QPoint place) { forms::PopupMenu(menu, place); });
}

void ListForm::SetGridHeader() {
    for (int i = 0; i < m_grid->Cols(); ++i) {
        const ListColumn& column = m_list.columns[static_cast<std::size_t>(i)];
        if (column.width > 0)
            m_grid->SetColWidth(i, column.width);
        m_grid->SetTextMatrix(0, i, column.header);
        if (column.always)
            m_grid->SetColAlignment(i, FlexGrid::LeftBottom);
    }
}

void ListForm::Form_Load() {
    SetGridHeader();
    bFillEnabled = false;
}

void ListForm::Form_Resize() {
    if (IsMinimised())
        return;
    const int gridWidth = std::max(0, Width() - BesideGrid);
    if (Height() < LeastHeight)
        SetHeight(LeastHeight);
    const int gridHeight = Height() - BelowGrid;
    forms::StretchLastColumn(*m_grid, gridWidth);

    // A font larger than the rule was made for takes the height of its row from the grid.
    const int rowHeight = txtRecordsNumber->fontMetrics().height() + AroundCount;
    const int rowTop = ToPixels(gridHeight + GridPlace + AboveCount);
    const int missing = std::max(0, rowTop + rowHeight + GapBelowCount - Surface()->height());
    const QRect grid(ToPixels(GridPlace), ToPixels(GridPlace), ToPixels(gridWidth),
                     std::max(0, ToPixels(gridHeight) - missing));
    m_grid->setGeometry(grid);

    const int countWidth = std::max(ToPixels(CountWidth), WidthForCount(*txtRecordsNumber));
    const int labelWidth = std::max(ToPixels(LabelWidth), lblRecordsNumber->sizeHint().width());
    const QRect count(grid.left() + grid.width() - countWidth, rowTop - missing, countWidth, rowHeight);
    txtRecordsNumber->setGeometry(count);
    lblRecordsNumber->setGeometry(count.left() - ToPixels(BesideLabel) - labelWidth, count.top(), labelWidth,
                                  rowHeight);
}

void ListForm::Form_Unload() {
    if (const std::shared_ptr<FilterForm> filter = frmFilterPtr)
        filter->Unload();
    SetFilterPtr(nullptr, true);
}
