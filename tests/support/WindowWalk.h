#pragma once

#include <QStringList>

class QWidget;

namespace test {

/// Walks over the controls of a window and tells what assistive tools and automated checks would stumble on:
/// an empty or doubled object name, a label that names no field although a field stands beside it nameless, a
/// field without an accessible name, two controls under one Alt letter. Empty if all is well.
QStringList WindowFaults(const QWidget& window);

} // namespace test
