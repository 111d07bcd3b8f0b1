#pragma once

#include <QStringList>

class QWidget;

namespace test {

/// Walks over the controls of a window and tells what assistive tools and automated checks would stumble on:
/// an empty or doubled object name, a label that names no field although a field stands beside it nameless, a
/// field without an accessible name, two controls under one Alt letter. Empty if all is well.
QStringList WindowFaults(const QWidget& window);

/// Walks the tree that assistive tools are given of a window, and tells what they would not find: a control
/// that is not in the tree or under another role than its own, a button under another name than its text, a
/// field under another name than its label's. Empty if all is well.
QStringList SpokenFaults(QWidget& window);

/// What is said of a widget when it gets the focus: role and name, as "text Фамилия".
QString Spoken(QWidget* widget);

/// What is said on a round through the fields of the window in front by Tab, from the field with the focus
/// on, joined by "; ".
QString SpokenRound();

} // namespace test
