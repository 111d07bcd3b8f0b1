#pragma once

#include <QString>

class QWidget;

namespace test {

/// Types the text into the widget by key events, letters of any script (QTest's own typing knows Latin-1
/// only).
void Type(QWidget* widget, const QString& text);

} // namespace test
