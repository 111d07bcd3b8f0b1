#include "platform/forms/FlexGrid.h"

#include "platform/forms/FlexGridModel.h"
#include "platform/forms/RowDelegate.h"
#include "platform/forms/Texts.h"
#include "platform/forms/Twips.h"
#include "platform/runtime/Failure.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <numeric>

namespace forms {

namespace {

constexpr int ImpossibleRow = 30009;
constexpr int LeastDraggedWidth = 8; ///< logical pixels

int ViewWidth(int twips) {
    return std::max(1, ToPixels(twips));
}

bool IsBlank(const QModelIndex& index) {
    for (int col = 0; col < index.model()->columnCount(); ++col)
        if (!index.siblingAtColumn(col).data().toString().isEmpty())
            return false;
    return true;
}

/// Shows the current row marked, unless it is blank: the row under the header of an empty list is no record.
class GridDelegate final : public RowDelegate {
public:
    using RowDelegate::RowDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem cell = option;
        if (cell.state.testFlag(QStyle::State_Selected) && IsBlank(index)) {
            cell.state.setFlag(QStyle::State_Selected, false);
            painter->fillRect(cell.rect, cell.palette.base()); // the view has marked the ground already
        }
        RowDelegate::paint(painter, cell, index);
    }
};

} // namespace

FlexGrid::FlexGrid(int rows, int cols, QWidget* parent)
    : QTableView(parent)
    , m_model(new Model(rows, cols, this))
    , m_colWidths(cols, DefaultColWidth) {
    setModel(m_model);
    setItemDelegate(new GridDelegate(this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setHorizontalScrollMode(ScrollPerPixel);
    setCornerButtonEnabled(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    QHeaderView* header = horizontalHeader();
    header->setSectionsClickable(false);
    header->setHighlightSections(false);
    header->setTextElideMode(Qt::ElideRight);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setMinimumSectionSize(LeastDraggedWidth);
    header->setDefaultSectionSize(ViewWidth(DefaultColWidth));
    header->viewport()->installEventFilter(this);
    connect(header, &QHeaderView::sectionResized, this, [this](int col, int /*before*/, int now) {
        if (!m_settling && now > 0)
            m_colWidths[col] = ToTwips(now);
    });
    connect(header, &QHeaderView::sectionDoubleClicked, this, &FlexGrid::DblClick);
    for (int col = 0; col < cols; ++col)
        ApplyColWidth(col);
    ApplyRowHeight();
    ApplyCurrent();
}

FlexGrid::~FlexGrid() = default;

// --- Rows, columns, cells

int FlexGrid::Rows() const {
    return m_model->Rows();
}

void FlexGrid::SetRows(int rows) {
    if (rows < 2) // the fixed row and one more
        runtime::Raise(runtime::InvalidPropertyValue);
    m_row = std::min(m_row, rows - 1);
    StartFilling();
    m_model->Resize(rows, Cols());
    EndFilling(false);
}

int FlexGrid::Cols() const {
    return m_model->Cols();
}

void FlexGrid::SetCols(int cols) {
    if (cols < 0)
        runtime::Raise(runtime::InvalidPropertyValue);
    m_col = std::max(0, std::min(m_col, cols - 1));
    m_colWidths.resize(cols, DefaultColWidth);
    StartFilling();
    m_model->Resize(Rows(), cols);
    EndFilling(false);
}

void FlexGrid::CheckCell(int row, int col) const {
    if (row < 0 || row >= Rows() || col < 0 || col >= Cols())
        runtime::Raise(runtime::InvalidPropertyIndex);
}

QString FlexGrid::TextMatrix(int row, int col) const {
    CheckCell(row, col);
    return m_model->At(row, col);
}

void FlexGrid::SetTextMatrix(int row, int col, const QString& text) {
    CheckCell(row, col);
    m_model->Set(row, col, text.size() <= MostShown ? text : Shown(text));
}

void FlexGrid::SetColAlignment(int col, Alignment alignment) {
    CheckCell(0, col);
    m_model->SetAlignment(col, alignment);
}

void FlexGrid::Clear() {
    m_model->Clear();
}

int FlexGrid::ColWidth(int col) const {
    if (col == -1)
        return 0;
    CheckCell(0, col);
    return m_colWidths[col];
}

void FlexGrid::SetColWidth(int col, int twips) {
    if (col == -1)
        return;
    CheckCell(0, col);
    m_colWidths[col] = twips < 0 ? DefaultColWidth : twips;
    if (m_fillings == 0)
        ApplyColWidth(col);
}

void FlexGrid::ApplyColWidth(int col) {
    const QScopedValueRollback settling(m_settling, true);
    const int twips = m_colWidths[col];
    setColumnHidden(col, twips == 0);
    if (twips > 0)
        setColumnWidth(col, std::max(ViewWidth(twips), LeastWidth(twips)));
}

/// Nobody has chosen the default width: with large letters it is as wide as it is to be of use.
int FlexGrid::LeastWidth(int twips) const {
    constexpr int Letters = 7;
    return twips == DefaultColWidth ? Letters * fontMetrics().averageCharWidth() : 0;
}

void FlexGrid::ApplyRowHeight() {
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + RowDelegate::Padding);
}

// --- The current cell

int FlexGrid::Row() const {
    return m_row;
}

void FlexGrid::SetRow(int row) {
    if (row < 1 || row >= Rows())
        runtime::Raise(ImpossibleRow);
    m_row = row;
    ApplyCurrent();
    if (m_fillings == 0)
        scrollTo(currentIndex());
}

void FlexGrid::ApplyCurrent() {
    if (m_fillings > 0)
        return;
    const QModelIndex index = m_model->index(m_row - 1, VisibleCol());
    if (!index.isValid() || (index == currentIndex() && selectionModel()->isSelected(index)))
        return;
    const QScopedValueRollback settling(m_settling, true);
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    setAutoScroll(true);
}

int FlexGrid::VisibleCol() const {
    for (int col = m_col; col < Cols(); ++col)
        if (!isColumnHidden(col))
            return col;
    return m_col;
}

void FlexGrid::currentChanged(const QModelIndex& now, const QModelIndex& before) {
    QTableView::currentChanged(now, before);
    if (m_settling || m_fillings > 0 || !now.isValid())
        return;
    m_allChosen = false;
    m_row = now.row() + 1;
    m_col = now.column();
}

QItemSelectionModel::SelectionFlags FlexGrid::selectionCommand(const QModelIndex& index,
                                                               const QEvent* /*event*/) const {
    if (!index.isValid())
        return QItemSelectionModel::NoUpdate;
    return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
}

QModelIndex FlexGrid::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    // The row is what counts here, so these two keys go to the ends of the list.
    if (action == MoveHome)
        return m_model->index(0, VisibleCol());
    if (action == MoveEnd)
        return m_model->index(Rows() - 2, VisibleCol());
    return QTableView::moveCursor(action, modifiers);
}

// --- Fills

FlexGrid::Filling::Filling(FlexGrid& grid, std::vector<int> keyColumns)
    : m_grid(grid)
    , m_keyColumns(std::move(keyColumns)) {
    for (const int col : m_keyColumns)
        m_key += m_grid.TextMatrix(m_grid.Row(), col);
    if (m_key.join(QString()).isEmpty())
        m_key.clear();
    for (int row = 1; row < m_grid.Row(); ++row)
        m_rowsBefore += HasKey(row) ? 1 : 0;
    m_grid.StartFilling();
}

FlexGrid::Filling::~Filling() {
    const bool found = FindEntry();
    m_grid.EndFilling(found);
}

bool FlexGrid::Filling::HasKey(int row) const {
    if (m_key.isEmpty())
        return false;
    for (std::size_t i = 0; i < m_keyColumns.size(); ++i)
        if (m_grid.m_model->At(row, m_keyColumns[i]) != m_key[static_cast<qsizetype>(i)])
            return false;
    return true;
}

bool FlexGrid::Filling::FindEntry() {
    int found = 0;
    for (int row = 1; row < m_grid.Rows() && m_rowsBefore >= 0; ++row) {
        if (!HasKey(row))
            continue;
        found = row;
        --m_rowsBefore;
    }
    if (found != 0)
        m_grid.m_row = found;
    return found != 0;
}

void FlexGrid::StartFilling() {
    m_allChosen = false;
    if (m_fillings++ == 0)
        m_model->StartFilling();
}

void FlexGrid::EndFilling(bool showCurrent) {
    if (--m_fillings > 0)
        return;
    const int top = verticalScrollBar()->value();
    const int left = horizontalScrollBar()->value();
    {
        const QScopedValueRollback settling(m_settling, true);
        m_model->EndFilling();
    }
    for (int col = 0; col < Cols(); ++col)
        ApplyColWidth(col);
    ApplyCurrent();
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(top);
    if (showCurrent)
        scrollTo(currentIndex());
    horizontalScrollBar()->setValue(left);
}

// --- Mouse and keyboard

void FlexGrid::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && indexAt(event->pos()).isValid()) {
        m_allChosen = false;
        QTableView::mousePressEvent(event);
        return;
    }
    event->accept();
    if (event->button() == Qt::RightButton)
        Q_EMIT ContextMenuRequested(event->globalPosition().toPoint());
}

void FlexGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() == Qt::LeftButton) {
        const QModelIndex cell = indexAt(event->pos());
        if (cell.isValid())
            setCurrentIndex(cell);
        Q_EMIT DblClick();
    } else if (event->button() == Qt::RightButton)
        Q_EMIT ContextMenuRequested(event->globalPosition().toPoint());
}

bool FlexGrid::eventFilter(QObject* watched, QEvent* event) {
    if (watched != horizontalHeader()->viewport())
        return QTableView::eventFilter(watched, event);
    if (event->type() == QEvent::ToolTip) {
        TellHeader(*static_cast<QHelpEvent*>(event));
        return true;
    }
    const bool pressed =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    const auto* mouse = pressed ? static_cast<QMouseEvent*>(event) : nullptr;
    if (!mouse || mouse->button() != Qt::RightButton)
        return QTableView::eventFilter(watched, event);
    Q_EMIT ContextMenuRequested(mouse->globalPosition().toPoint());
    return true;
}

void FlexGrid::TellHeader(const QHelpEvent& event) const {
    const QHeaderView* header = horizontalHeader();
    const int col = header->logicalIndexAt(event.pos());
    const QString text = col < 0 ? QString() : m_model->At(0, col);
    const int margin = header->style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, header);
    const bool isCut =
        col >= 0 && header->fontMetrics().horizontalAdvance(text) + 2 * margin > header->sectionSize(col);
    QToolTip::showText(event.globalPos(), isCut ? PlainToolTip(text) : QString(), header->viewport());
}

void FlexGrid::contextMenuEvent(QContextMenuEvent* event) {
    event->accept(); // most are asked for by the button or the key already
    if (event->reason() == QContextMenuEvent::Keyboard && !m_askedByKey)
        AskForMenu(); // some systems keep Shift+F10 to themselves and send this alone
}

void FlexGrid::keyPressEvent(QKeyEvent* event) {
    const bool wantsMenu = event->key() == Qt::Key_Menu ||
                           (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier);
    m_askedByKey = wantsMenu;
    if (wantsMenu) {
        event->accept();
        AskForMenu();
    } else if (event->matches(QKeySequence::SelectAll)) {
        event->accept();
        ChooseAll();
    } else if (event->matches(QKeySequence::Copy)) {
        event->accept();
        Copy();
    } else if (ResizeByKey(*event)) {
        event->accept();
    } else {
        QTableView::keyPressEvent(event);
    }
}

/// One letter, also typed again and again, goes on to the next entry; more of them are looked for together.
void FlexGrid::keyboardSearch(const QString& text) {
    if (text.isEmpty())
        return;
    const bool goesOn =
        m_sinceLetter.isValid() && !m_sinceLetter.hasExpired(QApplication::keyboardInputInterval());
    m_sinceLetter.start();
    m_letters = goesOn ? m_letters + text : text;
    const bool sameLetter = m_letters == text.repeated(m_letters.size());
    const int col = m_searchCol >= 0 ? m_searchCol : VisibleCol();
    const int count = Rows() - 1;
    for (int step = sameLetter ? 1 : 0; step <= count && col < Cols(); ++step) {
        const int row = (m_row - 1 + step) % count + 1;
        if (m_model->At(row, col).startsWith(sameLetter ? text : m_letters, Qt::CaseInsensitive))
            return setCurrentIndex(m_model->index(row - 1, col));
    }
}

void FlexGrid::ChooseAll() {
    if (!m_allowsAll || !currentIndex().isValid())
        return;
    const QItemSelection all(m_model->index(0, 0), m_model->index(Rows() - 2, Cols() - 1));
    selectionModel()->select(all, QItemSelectionModel::ClearAndSelect);
    m_allChosen = true;
}

void FlexGrid::Copy() const {
    if (!currentIndex().isValid() || (!m_allChosen && IsBlank(currentIndex())))
        return;
    QStringList lines;
    for (int row = m_allChosen ? 0 : Row(); row <= (m_allChosen ? Rows() - 1 : Row()); ++row)
        lines += LineOf(row);
    QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

/// The columns in sight, parted by tabs.
QString FlexGrid::LineOf(int row) const {
    QStringList cells;
    for (int col = 0; col < Cols(); ++col) {
        qsizetype cursor = 0;
        if (!isColumnHidden(col))
            cells += OneLine(m_model->At(row, col), cursor);
    }
    return cells.join(u'\t');
}

/// What the mouse does on the edge of a header: Ctrl+Shift+arrow moves it, Ctrl+Plus fits the column.
bool FlexGrid::ResizeByKey(const QKeyEvent& event) {
    const QModelIndex cell = currentIndex();
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (!cell.isValid() || !modifiers.testFlag(Qt::ControlModifier))
        return false;
    const bool isPlus = event.key() == Qt::Key_Plus || event.key() == Qt::Key_Equal;
    if (isPlus && !modifiers.testFlag(Qt::AltModifier)) {
        resizeColumnToContents(cell.column());
        return true;
    }
    const bool wider = event.key() == Qt::Key_Right;
    if (modifiers != (Qt::ControlModifier | Qt::ShiftModifier) || (!wider && event.key() != Qt::Key_Left))
        return false;
    const int step = fontMetrics().averageCharWidth();
    const int width = columnWidth(cell.column()) + (wider ? step : -step);
    setColumnWidth(cell.column(), std::max(width, LeastDraggedWidth));
    return true;
}

/// At the current row, which the menu is about.
void FlexGrid::AskForMenu() {
    scrollTo(currentIndex());
    const QRect ground = viewport()->rect();
    const QRect cell = visualRect(currentIndex()) & ground;
    const QPoint place = cell.isEmpty() ? ground.topLeft() : cell.bottomLeft();
    Q_EMIT ContextMenuRequested(viewport()->mapToGlobal(place));
}

void FlexGrid::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        ApplyRowHeight();
    if (event->type() == QEvent::FontChange && m_fillings == 0)
        for (int col = 0; col < Cols(); ++col)
            ApplyColWidth(col);
}

// --- The Resize rule

void StretchLastColumn(FlexGrid& grid, int gridWidth) {
    constexpr int Reserve = 400;
    constexpr int LeastWidth = 1500;
    int sum = 0;
    for (int col = 0; col <= grid.Cols() - 2; ++col)
        sum += grid.ColWidth(col);
    const int rest = gridWidth - sum - Reserve;
    if (gridWidth > sum && rest > LeastWidth)
        grid.SetColWidth(grid.Cols() - 1, rest);
}

} // namespace forms
