#include "platform/forms/FlexGridModel.h"

#include <algorithm>

namespace forms {

namespace {

bool IsNumber(QStringView text) {
    if (text.startsWith(u'-'))
        text = text.mid(1);
    const auto isPart = [](QChar c) { return (c >= u'0' && c <= u'9') || c == u','; };
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isPart) && text.count(u',') <= 1 &&
           text != u",";
}

} // namespace

FlexGrid::Model::Model(int rows, int cols, QObject* parent)
    : QAbstractTableModel(parent)
    , m_rows(rows)
    , m_cells(static_cast<std::size_t>(rows) * cols)
    , m_alignments(cols, General) {
}

void FlexGrid::Model::Resize(int rows, int cols) {
    if (cols != Cols()) {
        std::vector<QString> cells(static_cast<std::size_t>(m_rows) * cols);
        for (int row = 0; row < m_rows; ++row)
            for (int col = 0; col < std::min(cols, Cols()); ++col)
                cells[static_cast<std::size_t>(row) * cols + col] = std::move(m_cells[Place(row, col)]);
        m_cells = std::move(cells);
        m_alignments.resize(cols, General);
    }
    m_cells.resize(static_cast<std::size_t>(rows) * cols);
    m_rows = rows;
}

void FlexGrid::Model::Set(int row, int col, const QString& text) {
    m_cells[Place(row, col)] = text;
    if (m_filling)
        return;
    if (row == 0)
        Q_EMIT headerDataChanged(Qt::Horizontal, col, col);
    else
        Q_EMIT dataChanged(index(row - 1, col), index(row - 1, col));
}

void FlexGrid::Model::SetAlignment(int col, Alignment alignment) {
    m_alignments[col] = alignment;
    TellAllChanged();
}

void FlexGrid::Model::Clear() {
    std::fill(m_cells.begin(), m_cells.end(), QString());
    TellAllChanged();
}

void FlexGrid::Model::TellAllChanged() {
    if (m_filling || Cols() == 0)
        return;
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, Cols() - 1);
    Q_EMIT dataChanged(index(0, 0), index(m_rows - 2, Cols() - 1));
}

void FlexGrid::Model::StartFilling() {
    beginResetModel();
    m_filling = true;
}

void FlexGrid::Model::EndFilling() {
    m_filling = false;
    m_cells.shrink_to_fit();
    endResetModel();
}

int FlexGrid::Model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rows - 1;
}

int FlexGrid::Model::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : Cols();
}

QVariant FlexGrid::Model::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole)
        return At(index.row() + 1, index.column());
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(AlignmentOf(index.row() + 1, index.column()));
    return {};
}

Qt::Alignment FlexGrid::Model::AlignmentOf(int row, int col) const {
    if (m_alignments[col] == LeftBottom)
        return Qt::AlignLeft | Qt::AlignBottom;
    return (IsNumber(At(row, col)) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
}

QVariant FlexGrid::Model::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= Cols())
        return {};
    if (role == Qt::DisplayRole)
        return At(0, section);
    if (role == Qt::TextAlignmentRole) // a header stands over what is in its column
        return QVariant::fromValue((AlignmentOf(1, section) & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter);
    return {};
}

} // namespace forms
