#pragma once

#include "platform/engine/schema/Types.h"

#include <QString>

#include <cstdint>

namespace engine::sql {

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

/// An expression as SQLite text, and what is known of its values.
struct Written {
    QString text;
    DataType type = DataType::Unknown;
    int precedence = PrimaryPrecedence;
    int size = 0;           ///< of a text column
    bool condition = false; ///< 0, 1 or NULL, while the dialect's truth is -1
    bool nullable = true;
    bool collated = false; ///< a column that compares by ZV_FOLD of itself
    bool null = false;     ///< the constant NULL
    bool wide = false;     ///< a whole number that may have grown beyond 32 bits, and is a fraction then
    /// Of CURRENCY: the same value as a whole number of ten-thousandths, as it is kept and calculated with.
    /// `text` is this divided, for all to whom it is a number like others.
    QString money;

    TypeKind Kind() const { return KindOf(type); }
    bool IsText() const { return Kind() == TypeKind::Text; }
    bool IsDate() const { return Kind() == TypeKind::Date; }
    /// A number or a date, which is one inside SQLite.
    bool IsNumber() const { return Kind() == TypeKind::Number || IsDate(); }
    /// Whether only the rows tell the type.
    bool IsUnknown() const { return Kind() == TypeKind::Unknown && !null; }
    bool IsAmount() const { return !money.isEmpty(); }

    /// The text, in parentheses if it binds less tight.
    QString At(int least) const;
    /// The same value written another way, as a number or text of `type`.
    Written As(const QString& changed, DataType asType) const;
};

Written MakeWritten(const QString& text, DataType type, int precedence = PrimaryPrecedence);
Written MakeNull();
Written MakeCondition(const QString& text, int precedence);
/// An amount of money; `units` is its text in ten-thousandths, of PrimaryPrecedence.
Written MakeAmount(const QString& units);
/// A column of a table, of a sub-query or among parameters: its value as it is kept there.
Written StoredValue(const QString& text, DataType type, int size = 0);
/// The same of a column of a written query, now called `text`.
Written DeliveredValue(const Written& column, const QString& text);
/// Makes it an amount of money.
void SetMoney(Written& value, const QString& units);
/// In the form in which queries deliver it: amounts of money in ten-thousandths.
Written Delivered(Written value);
/// A text in the form in which equal texts meet in DISTINCT, GROUP BY, UNION and IN.
Written Folded(const Written& value);
/// A text in the form in which it is sorted.
Written Sorted(const Written& value);
/// A condition or the value of a yes-or-no column as the dialect's number, -1 or 0.
Written AsNumber(Written value);
/// A number as an amount of money in ten-thousandths, rounded.
QString Units(const Written& value);
/// A number in ten-thousandths, for a comparison with an amount.
QString ComparedUnits(const Written& value);
/// As an argument of a function, which could not tell amounts of money and numbers of type SINGLE from
/// others.
QString Argument(const Written& value);

} // namespace engine::sql
