#pragma once

#include "platform/engine/functions/Functions.h"
#include "platform/engine/store/Statement.h"

#include <QHash>

#include <cmath>
#include <optional>

namespace engine {

/// Hash of the values of a key, equal for values that the dialect's `=` finds equal: numbers by their value,
/// whatever they are kept as, texts folded.
class KeyHash {
public:
    void Add(std::int64_t number) { Mix(qHash(number, seed)); }
    void Add(double number) {
        if (number == std::floor(number) && std::abs(number) < 9.0e15)
            Add(static_cast<std::int64_t>(number));
        else
            Mix(qHash(number, seed));
    }
    void Add(QStringView text) { Mix(qHash(functions::Fold(text), seed)); }
    std::uint64_t Result() const { return m_hash; }

private:
    static constexpr std::size_t seed = 0x5bd1e995;
    void Mix(std::uint64_t part) { m_hash = (m_hash ^ part) * 0x9e3779b97f4a7c15ULL + (m_hash >> 29); }
    std::uint64_t m_hash = 0;
};

/// Whether a literal can be compared with a column of this type through a hash at all: text with text, number
/// with number.
inline bool IsKeyLiteral(DataType column, const Value& literal) {
    switch (column) {
    case DataType::Text:
    case DataType::Memo:
        return literal.As<QString>() != nullptr;
    case DataType::Byte:
    case DataType::Short:
    case DataType::Long:
    case DataType::Counter:
    case DataType::Single:
    case DataType::Double:
        return literal.As<std::int64_t>() != nullptr || literal.As<double>() != nullptr;
    default:
        return false;
    }
}

/// Adds a literal for which IsKeyLiteral holds.
inline void AddLiteral(KeyHash& hash, const Value& literal) {
    if (const auto* text = literal.As<QString>())
        hash.Add(QStringView(*text));
    else if (const auto* number = literal.As<std::int64_t>())
        hash.Add(*number);
    else if (const auto* fraction = literal.As<double>())
        hash.Add(*fraction);
}

} // namespace engine
