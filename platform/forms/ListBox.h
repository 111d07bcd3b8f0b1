#pragma once

#include <QListWidget>

namespace forms {

/// A list of texts with at most one selected, under the rules that the windows count on: ListIndex is -1
/// without a selection, and getting the focus selects nothing. A change of it raises Click whether by user or
/// program, and a mouse click on the selected entry raises it again. Clear leaves -1 without a Click.
class ListBox : public QListWidget {
    Q_OBJECT

public:
    explicit ListBox(QWidget* parent = nullptr);

    void AddItem(const QString& text);
    void Clear();
    int ListCount() const { return count(); }
    int ListIndex() const;
    /// Failure 380 for a place that the list does not have (-1 clears the selection).
    void SetListIndex(int index);
    /// The text at a place; the empty text outside the list.
    QString List(int index) const;

Q_SIGNALS:
    void Click();
    /// A printable character was typed on the list. If somebody listens, the list itself does not act on it;
    /// otherwise it looks for an entry that begins so.
    void KeyPress(const QString& text);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event = nullptr) const override;

private:
    bool m_clearing = false;
};

} // namespace forms
