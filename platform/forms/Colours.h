#pragma once

#include <QPalette>

namespace forms {

bool IsDark(const QColor& ground);

/// A colour between two: 0 is the first, 1 the second.
QColor Mixed(const QColor& from, const QColor& to, qreal share);

/// The ground of what is selected but does not have the keyboard; the usual text is read on it.
QColor PaleSelection(const QPalette& palette, QPalette::ColorGroup group = QPalette::Active);

} // namespace forms
