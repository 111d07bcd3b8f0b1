#pragma once

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QWidget>

namespace test {

/// Drags the text onto a place of the widget and lets it go there.
inline void Drop(QWidget& widget, QPoint place, const QString& text) {
    QMimeData data;
    data.setText(text);
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &enter);
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &drop);
}

} // namespace test
