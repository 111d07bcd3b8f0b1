#pragma once

#include "platform/engine/Value.h"

#include <cstdint>
#include <optional>

namespace engine {

/// What the types of the dialect come to when values meet.
enum class TypeKind : std::uint8_t { Unknown, Number, Date, Text, Bytes };

TypeKind KindOf(DataType type);
bool IsWholeNumber(DataType type);
/// The type of a column that takes values of both.
DataType CommonType(DataType a, DataType b);

/// The type that a word of a column definition names.
std::optional<DataType> TypeOfWord(QStringView word);

} // namespace engine
