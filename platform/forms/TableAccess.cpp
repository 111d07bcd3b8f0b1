#include "platform/forms/TableAccess.h"

#include "platform/forms/FlexGrid.h"
#include "platform/forms/MonthView.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QHeaderView>
#include <QPointer>

namespace forms {

namespace {

/// A cell of a table, or of its header in row -1 or column -1.
class Cell final : public QAccessibleInterface, public QAccessibleTableCellInterface {
public:
    Cell(QTableView* view, int row, int column)
        : m_view(view)
        , m_row(row)
        , m_column(column) {}

    bool isValid() const override {
        return m_view && m_row < m_view->model()->rowCount() && m_column < m_view->model()->columnCount();
    }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* parent() const override {
        return m_view ? QAccessible::queryAccessibleInterface(m_view.data()) : nullptr;
    }
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    void setText(QAccessible::Text /*which*/, const QString& /*text*/) override {}
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TableCellInterface && !IsHeader()
                   ? static_cast<QAccessibleTableCellInterface*>(this)
                   : nullptr;
    }

    QAccessible::Role role() const override {
        if (!IsHeader())
            return QAccessible::Cell;
        return m_row < 0 ? QAccessible::ColumnHeader : QAccessible::RowHeader;
    }

    QString text(QAccessible::Text which) const override {
        if (which != QAccessible::Name || !isValid() || m_column < 0 || m_view->isColumnHidden(m_column))
            return {};
        if (m_row < 0)
            return m_view->model()->headerData(m_column, Qt::Horizontal).toString();
        const QString text = Index().data().toString();
        const bool isMarked = m_row > 0 && qobject_cast<const MonthView*>(m_view->parentWidget()) &&
                              Index().data(Qt::FontRole).value<QFont>().bold();
        return isMarked ? text + MonthView::MarkedText() : text;
    }

    QRect rect() const override {
        if (!isValid() || m_column < 0)
            return {};
        const QWidget* ground = m_view->viewport();
        QRect place = m_view->visualRect(Index());
        if (m_row < 0) {
            const QHeaderView* header = m_view->horizontalHeader();
            ground = header->viewport();
            place = {header->sectionViewportPosition(m_column), 0, header->sectionSize(m_column),
                     header->height()};
        }
        return {ground->mapToGlobal(place.topLeft()), place.size()};
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        const QRect view(m_view->mapToGlobal(QPoint()), m_view->size());
        state.invisible = !m_view->isVisible() || !view.intersects(rect());
        state.readOnly = true;
        if (IsHeader())
            return state;
        state.selectable = true;
        state.focusable = true;
        state.selected = isSelected();
        state.focused = m_view->currentIndex() == Index();
        return state;
    }

    bool isSelected() const override { return isValid() && m_view->selectionModel()->isSelected(Index()); }
    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    QList<QAccessibleInterface*> columnHeaderCells() const override {
        QAccessibleInterface* header = m_view ? parent()->child(1 + m_column) : nullptr;
        return header ? QList{header} : QList<QAccessibleInterface*>();
    }
    int rowIndex() const override { return m_row; }
    int columnIndex() const override {
        int index = 0;
        for (int column = 0; m_view && column < m_column; ++column)
            index += m_view->isColumnHidden(column) ? 0 : 1;
        return index;
    }
    int rowExtent() const override { return 1; }
    int columnExtent() const override { return 1; }
    QAccessibleInterface* table() const override { return parent(); }

    int Row() const { return m_row; }
    int Column() const { return m_column; }

private:
    bool IsHeader() const { return m_row < 0 || m_column < 0; }
    QModelIndex Index() const { return m_view->model()->index(m_row, m_column); }

    QPointer<QTableView> m_view;
    int m_row;
    int m_column;
};

/// As a child each cell has the number under which the view tells of it: row by row, with the headers and
/// with hidden columns. As a table it has the columns that are seen.
class Table final : public QAccessibleWidget, public QAccessibleTableInterface {
public:
    explicit Table(QTableView* view)
        : QAccessibleWidget(view, QAccessible::Table) {}
    ~Table() override { DropCells(); }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    // --- The tree

    int childCount() const override { return (View().model()->rowCount() + 1) * Wide(); }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount())
            return nullptr;
        QAccessible::Id& cell = m_cells[index];
        if (cell == 0)
            cell = QAccessible::registerAccessibleInterface(
                new Cell(&View(), index / Wide() - 1, index % Wide() - 1));
        return QAccessible::accessibleInterface(cell);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* cell = dynamic_cast<const Cell*>(child);
        return cell ? Number(cell->Row(), cell->Column()) : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        const QModelIndex index = View().indexAt(View().viewport()->mapFromGlobal(QPoint(x, y)));
        return index.isValid() ? Of(index) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        const QModelIndex index = View().currentIndex();
        return View().hasFocus() && index.isValid() ? Of(index) : nullptr;
    }

    // --- The table

    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    int rowCount() const override { return View().model()->rowCount(); }
    int columnCount() const override { return static_cast<int>(Seen().size()); }
    QAccessibleInterface* cellAt(int row, int column) const override {
        const QList<int> seen = Seen();
        if (row < 0 || row >= rowCount() || column < 0 || column >= seen.size())
            return nullptr;
        return child(Number(row, seen[column]));
    }
    QString columnDescription(int column) const override {
        return View().model()->headerData(Seen().value(column, -1), Qt::Horizontal).toString();
    }
    QString rowDescription(int /*row*/) const override { return {}; }

    int selectedCellCount() const override { return static_cast<int>(selectedCells().size()); }
    QList<QAccessibleInterface*> selectedCells() const override {
        QList<QAccessibleInterface*> cells;
        for (const QModelIndex& index : View().selectionModel()->selectedIndexes())
            if (!View().isColumnHidden(index.column()))
                cells += Of(index);
        return cells;
    }
    QList<int> selectedRows() const override {
        QList<int> rows;
        for (const QModelIndex& index : View().selectionModel()->selectedRows())
            rows += index.row();
        return rows;
    }
    int selectedRowCount() const override { return static_cast<int>(selectedRows().size()); }
    bool isRowSelected(int row) const override { return selectedRows().contains(row); }
    bool selectRow(int row) override {
        if (row < 0 || row >= rowCount() || columnCount() == 0)
            return false;
        View().setCurrentIndex(View().model()->index(row, Seen().constFirst()));
        return true;
    }
    bool unselectRow(int /*row*/) override { return false; }
    QList<int> selectedColumns() const override { return {}; }
    int selectedColumnCount() const override { return 0; }
    bool isColumnSelected(int /*column*/) const override { return false; }
    bool selectColumn(int /*column*/) override { return false; }
    bool unselectColumn(int /*column*/) override { return false; }

    void modelChange(QAccessibleTableModelChangeEvent* event) override {
        if (event->modelChangeType() != QAccessibleTableModelChangeEvent::DataChanged)
            DropCells();
    }

private:
    QTableView& View() const { return *static_cast<QTableView*>(widget()); }
    /// Cells of a row, its header among them.
    int Wide() const { return View().model()->columnCount() + 1; }
    int Number(int row, int column) const { return (row + 1) * Wide() + column + 1; }
    QAccessibleInterface* Of(const QModelIndex& index) const {
        return child(Number(index.row(), index.column()));
    }
    QList<int> Seen() const {
        QList<int> columns;
        for (int column = 0; column < View().model()->columnCount(); ++column)
            if (!View().isColumnHidden(column))
                columns += column;
        return columns;
    }
    void DropCells() {
        for (const QAccessible::Id cell : std::exchange(m_cells, {}))
            QAccessible::deleteAccessibleInterface(cell);
    }

    mutable QHash<int, QAccessible::Id> m_cells;
};

QAccessibleInterface* MakeTable(const QString& /*className*/, QObject* object) {
    auto* view = qobject_cast<QTableView*>(object);
    const bool isOurs =
        view && view->model() &&
        (qobject_cast<FlexGrid*>(view) || qobject_cast<QCalendarWidget*>(view->parentWidget()));
    return isOurs ? new Table(view) : nullptr;
}

} // namespace

void InstallTableAccess() {
    QAccessible::installFactory(MakeTable);
}

} // namespace forms
