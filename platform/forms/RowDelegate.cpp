#include "platform/forms/RowDelegate.h"

#include <QWidget>

namespace forms {

namespace {

/// A selection that marks its row without claiming the keyboard.
void MakePale(QPalette& palette) {
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::Highlight, PaleSelection(palette, group));
        palette.setColor(group, QPalette::HighlightedText, palette.color(group, QPalette::Text));
    }
}

} // namespace

QColor PaleSelection(const QPalette& palette, QPalette::ColorGroup group) {
    constexpr qreal Strength = 0.3;
    const QColor ground = palette.color(group, QPalette::Base);
    const QColor mark = palette.color(group, QPalette::Highlight);
    const auto mixed = [](int from, int to) { return from + qRound((to - from) * Strength); };
    return {mixed(ground.red(), mark.red()), mixed(ground.green(), mark.green()),
            mixed(ground.blue(), mark.blue())};
}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(std::max(size.height(), option.fontMetrics.height() + Padding));
    return size;
}

void RowDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    // A row is one line high: all its texts stand on the same one.
    option->displayAlignment = (option->displayAlignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter;
    if (option->state.testFlag(QStyle::State_Selected) && option->widget && !option->widget->hasFocus())
        MakePale(option->palette);
}

} // namespace forms
