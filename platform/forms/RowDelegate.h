#pragma once

#include <QStyledItemDelegate>

namespace forms {

/// The rows of grids and lists: with air around their texts, and with a selection that is strong where the
/// keyboard is and pale elsewhere. A menu over a list leaves it the keyboard. A text that does not stand
/// whole in its cell is the cell's tooltip.
class RowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static constexpr int Padding = 6; ///< logical pixels above and below the text of a row together

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace forms
