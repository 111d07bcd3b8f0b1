#pragma once

#include "platform/engine/Value.h"

#include <QString>

#include <cstdint>

namespace engine::sql {

/// What the types of the dialect come to when values meet.
enum class TypeKind : std::uint8_t { Unknown, Number, Date, Text, Bytes };

TypeKind KindOf(DataType type);
bool IsWholeNumber(DataType type);
/// The type of a column that takes values of both.
DataType CommonType(DataType a, DataType b);

/// How tight the outermost operator of a SQLite text binds.
enum Precedence : int {
    OrPrecedence = 1,
    AndPrecedence,
    NotPrecedence,
    EqualPrecedence,
    LessPrecedence,
    AddPrecedence,
    MultiplyPrecedence,
    ConcatPrecedence,
    CollatePrecedence,
    PrimaryPrecedence,
};

/// An expression in SQLite's words, and what is known of its values.
struct Written {
    QString text;
    int precedence = PrimaryPrecedence;
    DataType type = DataType::Unknown;
    int size = 0;           ///< of a text column
    bool condition = false; ///< 0, 1 or NULL, while the dialect's truth is -1
    bool nullable = true;
    bool collated = false; ///< a column that compares by ZV_FOLD of itself
    bool null = false;     ///< the constant NULL

    TypeKind Kind() const { return KindOf(type); }
    /// The text, in parentheses if it binds less tight.
    QString At(int least) const;
};

/// "name" as SQLite quotes it.
QString Quoted(const QString& name);

} // namespace engine::sql
