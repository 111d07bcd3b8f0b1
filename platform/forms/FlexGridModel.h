#pragma once

#include "platform/forms/FlexGrid.h"

#include <QAbstractTableModel>

namespace forms {

/// The texts of a grid. All of them stand in one pool, each behind its length; a cell is the place of its
/// text. So a cell costs four bytes and what it holds, and a fill makes no object of any kind for a cell.
///
/// Rows are those of the grid, row 0 being the header; to the view it is the header data.
class FlexGrid::Model final : public QAbstractTableModel {
public:
    Model(int rows, int cols, QObject* parent);

    int Rows() const { return m_rows; }
    int Cols() const { return m_cols; }
    void SetRows(int rows);
    void SetCols(int cols);
    QStringView At(int row, int col) const;
    void Set(int row, int col, QStringView text);
    void SetAlignment(int col, Alignment alignment);
    void Clear();

    /// Between these two changes are not told one by one.
    void StartFilling();
    void EndFilling();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    using Place = std::uint32_t;

    Place& Cell(int row, int col) { return m_cells[static_cast<std::size_t>(row) * m_cols + col]; }
    Place Cell(int row, int col) const { return m_cells[static_cast<std::size_t>(row) * m_cols + col]; }
    QStringView TextAt(Place place) const;
    Place Append(QStringView text);
    void DropGarbage();
    Qt::Alignment AlignmentOf(int row, int col) const;

    int m_rows;
    int m_cols;
    std::vector<Place> m_cells;   ///< row by row; 0 is the empty text
    std::vector<char16_t> m_pool; ///< begins with the empty text
    std::size_t m_garbage = 0;    ///< units of the pool that no cell refers to
    std::vector<Alignment> m_alignments;
    bool m_filling = false;
};

} // namespace forms
