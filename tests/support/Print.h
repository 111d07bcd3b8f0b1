#pragma once

#include <QString>

#include <ostream>

/// How a failed comparison of texts reads.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
