#include "tests/support/Keys.h"

#include <QApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPointer>
#include <QWidget>

namespace test {

void Type(QWidget* widget, const QString& text) {
    const QPointer<QWidget> target(widget);
    for (const QChar character : text) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            if (!target)
                return;
            QKeyEvent key(type, 0, Qt::NoModifier, QString(character));
            qApp->notify(target, &key);
        }
    }
}

void Drop(QWidget& widget, QPoint place, const QString& text) {
    QMimeData data;
    data.setText(text);
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &enter);
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &drop);
}

} // namespace test
