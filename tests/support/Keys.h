#pragma once

#include <QPoint>
#include <QString>

class QWidget;

namespace test {

/// Types the text into the widget by key events, letters of any script (QTest's own typing knows Latin-1
/// only).
void Type(QWidget* widget, const QString& text);

/// Drags the text onto a place of the widget and lets it go there.
void Drop(QWidget& widget, QPoint place, const QString& text);

} // namespace test
