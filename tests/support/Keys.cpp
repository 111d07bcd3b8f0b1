#include "tests/support/Keys.h"

#include <QApplication>
#include <QKeyEvent>
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

} // namespace test
