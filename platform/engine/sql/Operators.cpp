#include "platform/engine/sql/Operators.h"

#include <algorithm>
#include <array>

namespace engine::sql {

namespace {

// In the order of Op. The truths of XOR and EQV are 0, 1 or NULL, so that they can be compared.
constexpr auto operators = std::to_array<Operator>({
    {Op::Imp, ImpLevel, 0, "IMP", u"% OR %", OrPrecedence, DataType::Bit},
    {Op::Eqv, EqvLevel, 0, "EQV", u"% = %", EqualPrecedence, DataType::Bit},
    {Op::Xor, XorLevel, 0, "XOR", u"% <> %", EqualPrecedence, DataType::Bit},
    {Op::Or, OrLevel, 0, "OR", u"% OR %", OrPrecedence, DataType::Bit},
    {Op::And, AndLevel, 0, "AND", u"% AND %", AndPrecedence, DataType::Bit},
    {Op::Equal, ComparisonLevel, u'=', {}, u"% = %", EqualPrecedence, DataType::Bit},
    {Op::NotEqual, ComparisonLevel, NotEqual, {}, u"% <> %", EqualPrecedence, DataType::Bit},
    {Op::Less, ComparisonLevel, u'<', {}, u"% < %", EqualPrecedence, DataType::Bit},
    {Op::LessEqual, ComparisonLevel, LessEqual, {}, u"% <= %", EqualPrecedence, DataType::Bit},
    {Op::Greater, ComparisonLevel, u'>', {}, u"% > %", EqualPrecedence, DataType::Bit},
    {Op::GreaterEqual, ComparisonLevel, GreaterEqual, {}, u"% >= %", EqualPrecedence, DataType::Bit},
    {Op::Like, ComparisonLevel, 0, "LIKE", u"zv_like(%, %)", PrimaryPrecedence, DataType::Bit},
    {Op::Concat, ConcatLevel, u'&', {}, u"% || %", ConcatPrecedence, DataType::Text},
    {Op::Add, AddLevel, u'+', {}, u"% + %", AddPrecedence, DataType::Unknown, u"zv_madd(%, %)"},
    {Op::Subtract, AddLevel, u'-', {}, u"% - %", AddPrecedence, DataType::Unknown, u"zv_msub(%, %)"},
    {Op::Mod, ModLevel, 0, "MOD", u"zv_mod(%, %)", PrimaryPrecedence, DataType::Long},
    {Op::IntDivide, IntDivideLevel, u'\\', {}, u"zv_intdiv(%, %)", PrimaryPrecedence, DataType::Long},
    {Op::Multiply,
     MultiplyLevel,
     u'*',
     {},
     u"% * %",
     MultiplyPrecedence,
     DataType::Unknown,
     u"zv_mmul(%, %)"},
    {Op::Divide, MultiplyLevel, u'/', {}, u"zv_div(%, %)", PrimaryPrecedence, DataType::Double},
    {Op::Power, PowerLevel, u'^', {}, u"zv_pow(%, %)", PrimaryPrecedence, DataType::Double},
});

} // namespace

const Operator& OperatorOf(Op op) {
    return operators[static_cast<std::size_t>(op)];
}

const Operator* FindOperator(const Token& token) {
    const auto found = std::ranges::find_if(operators, [&](const Operator& candidate) {
        return candidate.sign != 0 ? token.Is(candidate.sign) : token.IsWord(candidate.word);
    });
    return found == operators.end() ? nullptr : &*found;
}

} // namespace engine::sql
