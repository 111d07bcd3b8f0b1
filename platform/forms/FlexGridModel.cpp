#include "platform/forms/FlexGridModel.h"

#include "platform/runtime/Failure.h"

#include <algorithm>
#include <limits>

namespace forms {

namespace {

constexpr std::size_t WorthCompacting = 64 * 1024;

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
    , m_cols(cols)
    , m_cells(static_cast<std::size_t>(rows) * cols)
    , m_pool(1, u'\0')
    , m_alignments(cols, General) {
}

void FlexGrid::Model::SetRows(int rows) {
    if (rows == m_rows)
        return;
    const bool grows = rows > m_rows;
    if (!m_filling && grows)
        beginInsertRows({}, m_rows - 1, rows - 2);
    else if (!m_filling)
        beginRemoveRows({}, rows - 1, m_rows - 2);
    const std::size_t cells = static_cast<std::size_t>(rows) * m_cols;
    for (std::size_t cell = cells; cell < m_cells.size(); ++cell)
        m_garbage += m_cells[cell] ? TextAt(m_cells[cell]).size() + 1 : 0;
    m_cells.resize(cells);
    m_rows = rows;
    if (!m_filling && grows)
        endInsertRows();
    else if (!m_filling)
        endRemoveRows();
    DropGarbage();
}

void FlexGrid::Model::SetCols(int cols) {
    if (cols == m_cols)
        return;
    const bool grows = cols > m_cols;
    if (!m_filling && grows)
        beginInsertColumns({}, m_cols, cols - 1);
    else if (!m_filling)
        beginRemoveColumns({}, cols, m_cols - 1);
    std::vector<Place> cells(static_cast<std::size_t>(m_rows) * cols);
    for (int row = 0; row < m_rows; ++row)
        for (int col = 0; col < std::min(cols, m_cols); ++col)
            cells[static_cast<std::size_t>(row) * cols + col] = Cell(row, col);
    m_cells = std::move(cells);
    m_alignments.resize(cols, General);
    m_cols = cols;
    if (!m_filling && grows)
        endInsertColumns();
    else if (!m_filling)
        endRemoveColumns();
}

QStringView FlexGrid::Model::TextAt(Place place) const {
    const char16_t* at = m_pool.data() + place;
    return {at + 1, *at};
}

QStringView FlexGrid::Model::At(int row, int col) const {
    return TextAt(Cell(row, col));
}

FlexGrid::Model::Place FlexGrid::Model::Append(QStringView text) {
    if (text.isEmpty())
        return 0;
    const std::size_t place = m_pool.size();
    const std::size_t length = text.size();
    if (place + length + 1 > std::numeric_limits<Place>::max())
        runtime::Raise(runtime::OutOfMemory);
    m_pool.push_back(static_cast<char16_t>(length));
    m_pool.insert(m_pool.end(), text.utf16(), text.utf16() + length);
    return static_cast<Place>(place);
}

void FlexGrid::Model::Set(int row, int col, QStringView text) {
    Place& cell = Cell(row, col);
    const Place before = cell;
    if (before == 0 && text.isEmpty())
        return;
    cell = Append(text);
    if (before)
        m_garbage += TextAt(before).size() + 1;
    if (!m_filling) {
        DropGarbage();
        if (row == 0)
            Q_EMIT headerDataChanged(Qt::Horizontal, col, col);
        else
            Q_EMIT dataChanged(index(row - 1, col), index(row - 1, col));
    }
}

void FlexGrid::Model::DropGarbage() {
    if (m_garbage < WorthCompacting || m_garbage < m_pool.size() / 2)
        return;
    const std::vector<char16_t> old = std::exchange(m_pool, std::vector<char16_t>(1, u'\0'));
    m_pool.reserve(old.size() - m_garbage);
    for (Place& cell : m_cells) {
        if (cell == 0)
            continue;
        const char16_t* at = old.data() + cell;
        cell = Append(QStringView(at + 1, *at));
    }
    m_garbage = 0;
}

void FlexGrid::Model::SetAlignment(int col, Alignment alignment) {
    m_alignments[col] = alignment;
    if (!m_filling && m_rows > 1)
        Q_EMIT dataChanged(index(0, col), index(m_rows - 2, col), {Qt::TextAlignmentRole});
}

void FlexGrid::Model::Clear() {
    std::fill(m_cells.begin(), m_cells.end(), 0);
    m_pool.resize(1);
    m_garbage = 0;
    if (!m_filling && m_cols > 0) {
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, m_cols - 1);
        if (m_rows > 1)
            Q_EMIT dataChanged(index(0, 0), index(m_rows - 2, m_cols - 1));
    }
}

void FlexGrid::Model::StartFilling() {
    beginResetModel();
    m_filling = true;
}

void FlexGrid::Model::EndFilling() {
    m_filling = false;
    DropGarbage();
    if (m_pool.capacity() > m_pool.size() + m_pool.size() / 8)
        m_pool.shrink_to_fit();
    endResetModel();
}

int FlexGrid::Model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rows - 1;
}

int FlexGrid::Model::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_cols;
}

QVariant FlexGrid::Model::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole)
        return At(index.row() + 1, index.column()).toString();
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(AlignmentOf(index.row() + 1, index.column()));
    return {};
}

Qt::Alignment FlexGrid::Model::AlignmentOf(int row, int col) const {
    switch (m_alignments[col]) {
    case LeftTop:
        return Qt::AlignLeft | Qt::AlignTop;
    case LeftCentre:
        return Qt::AlignLeft | Qt::AlignVCenter;
    case LeftBottom:
        return Qt::AlignLeft | Qt::AlignBottom;
    case RightCentre:
        return Qt::AlignRight | Qt::AlignVCenter;
    case General:
        break;
    }
    return (IsNumber(At(row, col)) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
}

QVariant FlexGrid::Model::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= m_cols)
        return {};
    if (role == Qt::DisplayRole)
        return At(0, section).toString();
    if (role == Qt::TextAlignmentRole) // a header stands over what is in its column
        return QVariant::fromValue((AlignmentOf(1, section) & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter);
    return {};
}

} // namespace forms
