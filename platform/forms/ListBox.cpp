#include "platform/forms/ListBox.h"

#include "platform/forms/RowDelegate.h"
#include "platform/forms/Texts.h"
#include "platform/runtime/Failure.h"

#include <QKeyEvent>
#include <QMetaMethod>
#include <QScopedValueRollback>

namespace forms {

namespace {

constexpr int WholeText = Qt::UserRole; ///< of an entry that shows only the beginning of it

bool IsPrintable(const QKeyEvent& key) {
    return !key.text().isEmpty() && key.text().at(0).isPrint() &&
           !(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

} // namespace

ListBox::ListBox(QWidget* parent)
    : QListWidget(parent) {
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUniformItemSizes(true);
    setItemDelegate(new RowDelegate(this));
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!m_clearing)
            Q_EMIT Click();
    });
}

void ListBox::AddItem(const QString& text) {
    addItem(Shown(text));
    if (const int last = count() - 1; item(last)->text() != text)
        item(last)->setData(WholeText, text);
}

void ListBox::Clear() {
    const QScopedValueRollback clearing(m_clearing, true);
    clear();
}

int ListBox::ListIndex() const {
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.first().row();
}

void ListBox::SetListIndex(int index) {
    if (index < -1 || index >= count())
        runtime::Raise(runtime::InvalidPropertyValue);
    if (index == -1)
        selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::Clear);
    else
        setCurrentRow(index, QItemSelectionModel::ClearAndSelect);
}

QString ListBox::List(int index) const {
    const QListWidgetItem* entry = item(index);
    if (!entry)
        return {};
    const QVariant whole = entry->data(WholeText);
    return whole.isValid() ? whole.toString() : entry->text();
}

void ListBox::focusInEvent(QFocusEvent* event) {
    const bool hadCurrent = currentIndex().isValid();
    QListWidget::focusInEvent(event);
    if (!hadCurrent) // without this the first arrow key would pass over the first entry
        selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
}

void ListBox::keyPressEvent(QKeyEvent* event) {
    if (!IsPrintable(*event)) {
        QListWidget::keyPressEvent(event);
        return;
    }
    static const QMetaMethod keyPress = QMetaMethod::fromSignal(&ListBox::KeyPress);
    if (isSignalConnected(keyPress))
        Q_EMIT KeyPress(event->text());
    else
        keyboardSearch(event->text());
    event->accept();
}

void ListBox::mousePressEvent(QMouseEvent* event) {
    const int before = ListIndex();
    const bool onEntry = event->button() == Qt::LeftButton && indexAt(event->pos()).isValid();
    QListWidget::mousePressEvent(event);
    if (onEntry && before == ListIndex())
        Q_EMIT Click();
}

QItemSelectionModel::SelectionFlags ListBox::selectionCommand(const QModelIndex& index,
                                                              const QEvent* /*event*/) const {
    return index.isValid() ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::NoUpdate;
}

} // namespace forms
