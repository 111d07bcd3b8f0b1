#pragma once

#include <QElapsedTimer>
#include <QTableView>

#include <vector>

namespace forms {

/// A read-only table of texts under one fixed row. Rows and columns count from 0; row 0 is the fixed row,
/// shown as the horizontal header. The cells are a plain copy of texts; of a text longer than MostShown the
/// beginning and an ellipsis.
///
/// Failures: 381 for a cell or column outside the grid, 30009 for an impossible current row, 380 for fewer
/// than two rows or a negative number of columns.
class FlexGrid : public QTableView {
    Q_OBJECT

public:
    explicit FlexGrid(int rows, int cols, QWidget* parent = nullptr);
    ~FlexGrid() override;

    static constexpr int DefaultColWidth = 960; ///< twips

    int Rows() const;
    /// Keeps the cells that remain, adds blank ones; the current row falls back to the last row if it is cut
    /// off.
    void SetRows(int rows);
    int Cols() const;
    void SetCols(int cols);

    QString TextMatrix(int row, int col) const;
    void SetTextMatrix(int row, int col, const QString& text);
    void SetTextMatrix(int row, int col, QStringView text) { SetTextMatrix(row, col, text.toString()); }

    /// Width of a column in twips; 0 hides it, -1 restores the default. Column -1 is ignored.
    int ColWidth(int col) const;
    void SetColWidth(int col, int twips);

    enum Alignment { LeftBottom = 2, General = 9 /**< numbers right, texts left */ };
    void SetColAlignment(int col, Alignment alignment);

    /// Empties all cells, the fixed ones too; rows, columns, widths and alignments stay.
    void Clear();

    /// The current row, from the first one that is not fixed; it stays over Clear and growth.
    int Row() const;
    void SetRow(int row);

    /// The column that letters typed on the grid are looked for in; -1, as at the start: the current one.
    void SetSearchCol(int col) { m_searchCol = col; }
    void keyboardSearch(const QString& text) override;
    /// Lets Ctrl+A choose all rows: Ctrl+C then copies them with the fixed row, else the current row. Columns
    /// are parted by tabs.
    void AllowSelectAll() { m_allowsAll = true; }

    /// Free text of the owner.
    QString Tag() const { return m_tag; }
    void SetTag(const QString& tag) { m_tag = tag; }

    /// Batch of changes in which the view does not follow every cell; a guard for fills. With key columns
    /// the entry that is current stays so, in sight, in whatever row it stands behind the fill; of several
    /// rows of one key the one in the same place among them, or the last. If it is gone the row number stays.
    class Filling {
    public:
        explicit Filling(FlexGrid& grid, std::vector<int> keyColumns = {});
        ~Filling();
        Filling(const Filling&) = delete;
        Filling& operator=(const Filling&) = delete;

    private:
        bool HasKey(int row) const;
        bool FindEntry();

        FlexGrid& m_grid;
        std::vector<int> m_keyColumns;
        QStringList m_key;    ///< texts of the current row; none: a blank row is no entry
        int m_rowsBefore = 0; ///< of the same key
    };

Q_SIGNALS:
    /// Right mouse button down on the grid, or the Menu key or Shift+F10: where a context menu belongs. The
    /// current row has not moved.
    void ContextMenuRequested(QPoint screenPosition);
    /// Double click of the left button, also on the header and on empty ground.
    void DblClick();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void currentChanged(const QModelIndex& now, const QModelIndex& before) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event = nullptr) const override;

private:
    class Model;

    void CheckCell(int row, int col) const;
    void ApplyColWidth(int col);
    int LeastWidth(int twips) const;
    void ApplyRowHeight();
    /// Makes the view's current index that of the current row and column again.
    void ApplyCurrent();
    /// The current column, or the next one if it is hidden: the focus has to be seen and read out.
    int VisibleCol() const;
    void ChooseAll();
    void Copy() const;
    QString LineOf(int row) const;
    bool ResizeByKey(const QKeyEvent& event);
    void AskForMenu();
    void TellHeader(const QHelpEvent& event) const;
    void StartFilling();
    void EndFilling(bool showCurrent);

    Model* m_model;
    QString m_tag;
    std::vector<int> m_colWidths; ///< twips
    int m_row = 1;
    int m_col = 0;
    int m_searchCol = -1;
    QString m_letters; ///< typed within the time for one text
    QElapsedTimer m_sinceLetter;
    bool m_askedByKey = false; ///< the last key asked for the menu
    bool m_allowsAll = false;
    bool m_allChosen = false; ///< by Ctrl+A, until the next move or fill
    int m_fillings = 0;
    bool m_settling = false; ///< the view is being set by program
};

/// The rule of sizable windows over one grid: if more than 1500 twips are left in `gridWidth` behind the
/// columns before the last and a reserve of 400, the last column takes them; else it keeps its width.
void StretchLastColumn(FlexGrid& grid, int gridWidth);

} // namespace forms
