#pragma once

#include "platform/forms/FlexGrid.h"

#include <QAbstractTableModel>

namespace forms {

/// The texts of a grid. Rows are those of the grid, row 0 being the header; to the view it is the header
/// data.
class FlexGrid::Model final : public QAbstractTableModel {
public:
    Model(int rows, int cols, QObject* parent);

    int Rows() const { return m_rows; }
    int Cols() const { return static_cast<int>(m_alignments.size()); }
    /// Between StartFilling and EndFilling; the cells that remain keep their texts.
    void Resize(int rows, int cols);
    const QString& At(int row, int col) const { return m_cells[Place(row, col)]; }
    void Set(int row, int col, const QString& text);
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
    std::size_t Place(int row, int col) const {
        return static_cast<std::size_t>(row) * m_alignments.size() + col;
    }
    void TellAllChanged();
    Qt::Alignment AlignmentOf(int row, int col) const;

    int m_rows;
    std::vector<QString> m_cells; ///< row by row
    std::vector<Alignment> m_alignments;
    bool m_filling = false;
};

} // namespace forms
