#pragma once

#include "platform/engine/Value.h"

#include <cstdint>
#include <optional>

namespace engine {

/// What the types of the dialect come to when values meet.
enum class TypeKind : std::uint8_t { Unknown, Number, Date, Text, Bytes };

inline constexpr int longestText = 255;   ///< characters of a TEXT column
inline constexpr int longestBinary = 510; ///< bytes of a BINARY column

TypeKind KindOf(DataType type);
bool IsWholeNumber(DataType type);
/// TEXT and LONGTEXT, whose columns can refuse the empty text.
bool IsText(DataType type);
struct WholeRange {
    std::int64_t least = 0;
    std::int64_t greatest = 0;
};
/// Of a whole number, a truth as 0 or 1, or an amount of money in ten-thousandths.
WholeRange RangeOf(DataType type);
/// The type of a column that takes values of both.
DataType CommonType(DataType a, DataType b);

/// The type that a word of a column definition names.
std::optional<DataType> TypeOfWord(QStringView word);

/// A type with the size of its columns.
struct SizedType {
    DataType type = DataType::Unknown;
    /// Characters of a text column, bytes of a BINARY one (0: no limit); of CURRENCY 0, or the digits where
    /// an older file keeps it as a fraction.
    int size = 0;

    /// As the dialect declares it and the file names its check: "TEXT(50)".
    QString TypeText() const;
    /// What SQLite calls it.
    QString StoredAs() const;
    /// The condition that every value but NULL meets; `column` stands in it as it is.
    QString TypeCheck(const QString& column) const;

    /// What TypeText has written; nothing for any other text.
    static std::optional<SizedType> FromText(const QString& text);
    /// For a column that SQLite alone has declared.
    static SizedType FromStored(const QString& declared);
};

} // namespace engine
