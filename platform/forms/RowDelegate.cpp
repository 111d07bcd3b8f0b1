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

QColor Mixed(const QColor& from, const QColor& to, qreal share) {
    const auto between = [share](int low, int high) { return low + qRound((high - low) * share); };
    return {between(from.red(), to.red()), between(from.green(), to.green()),
            between(from.blue(), to.blue())};
}

QColor PaleSelection(const QPalette& palette, QPalette::ColorGroup group) {
    constexpr qreal Strength = 0.3;
    return Mixed(palette.color(group, QPalette::Base), palette.color(group, QPalette::Highlight), Strength);
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
