#include "platform/forms/RowDelegate.h"

#include "platform/forms/Colours.h"
#include "platform/forms/Texts.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>

namespace forms {

namespace {

/// A selection that marks its row without claiming the keyboard.
void MakePale(QPalette& palette) {
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::Highlight, PaleSelection(palette, group));
        palette.setColor(group, QPalette::HighlightedText, palette.color(group, QPalette::Text));
    }
}

bool HasKeyboard(const QWidget& view) {
    return view.hasFocus() || (QApplication::activePopupWidget() && view.window()->focusWidget() == &view);
}

} // namespace

QSize RowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(std::max(size.height(), option.fontMetrics.height() + Padding));
    return size;
}

bool RowDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                            const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const bool isCut = sizeHint(option, index).width() > option.rect.width();
    const QString text = isCut ? PlainToolTip(index.data().toString()) : QString();
    QToolTip::showText(event->globalPos(), text, view->viewport(), option.rect);
    return true;
}

void RowDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    // A row is one line high: all its texts stand on the same one.
    option->displayAlignment = (option->displayAlignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter;
    // Some styles write pale what does not have the keyboard, also in the window in front.
    option->palette.setColor(QPalette::Inactive, QPalette::Text,
                             option->palette.color(QPalette::Active, QPalette::Text));
    if (option->state.testFlag(QStyle::State_Selected) && option->widget && !HasKeyboard(*option->widget))
        MakePale(option->palette);
}

} // namespace forms
