#pragma once

#include "platform/engine/sql/Bound.h"
#include "platform/engine/sql/Lexer.h"

namespace engine::sql {

enum class Op : std::uint8_t {
    Imp,
    Eqv,
    Xor,
    Or,
    And,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    Like,
    Concat,
    Add,
    Subtract,
    Mod,
    IntDivide,
    Multiply,
    Divide,
    Power,
};

/// How tight operators bind in the dialect: those of one level from left to right. NOT and the sign of a
/// number stand in front of what they change.
enum Level : int {
    ImpLevel = 1,
    EqvLevel,
    XorLevel,
    OrLevel,
    AndLevel,
    NotLevel,
    ComparisonLevel,
    ConcatLevel,
    AddLevel,
    ModLevel,
    IntDivideLevel,
    MultiplyLevel,
    NegateLevel,
    PowerLevel,
};

/// An operator between two values.
struct Operator {
    Op op;
    int level;
    char16_t sign;             ///< as Token::sign; 0 for a word
    std::string_view word;     ///< else empty
    const char16_t* form;      ///< of the term for the two
    int precedence;            ///< of what is written; PrimaryPrecedence for a function
    DataType result;           ///< Unknown: what the two have in common
    const char16_t* amounts{}; ///< the form for two amounts of money, if they stay one
};

const Operator& OperatorOf(Op op);
/// Null if the token is none.
const Operator* FindOperator(const Token& token);

} // namespace engine::sql
