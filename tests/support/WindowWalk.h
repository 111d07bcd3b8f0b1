#pragma once

#include <QStringList>

class QWidget;

namespace test {

/// Walks over the controls of a window and tells what assistive tools and automated checks would stumble on:
/// an empty or doubled object name, a field without an accessible name, a button without a text, two controls
/// under one Alt letter. Empty if all is well.
QStringList WindowFaults(const QWidget& window);

/// What is said of a widget when it gets the focus: role and name, as "text Фамилия".
QString Spoken(QWidget* widget);

/// What is said on a round through the fields of the window in front by Tab, from the field with the focus
/// on, joined by "; ".
QString SpokenRound();

} // namespace test
