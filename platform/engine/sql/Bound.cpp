#include "platform/engine/sql/Bound.h"

#include "platform/engine/EngineError.h"

#include <algorithm>
#include <utility>

namespace engine::sql {

namespace {

constexpr qsizetype longestExpression = 2'000'000;
constexpr qsizetype sizeOfQuery = 64;

/// With a collation, if the value is or may be a text.
Bound Collated(const Bound& value, QStringView form) {
    if ((!value.IsText() && value.Kind() != TypeKind::Unknown) || value.null)
        return Delivered(value);
    Bound collated = value;
    collated.term = MakeTerm(form, {value.At(CollatePrecedence)}, CollatePrecedence);
    return collated;
}

TermPtr UnitsBy(QStringView form, const Bound& value) {
    if (value.null)
        return value.term;
    return value.IsAmount() ? value.money : MakeTerm(form, {value});
}

void SetMoney(Bound& value, const TermPtr& units) {
    value.type = DataType::Currency;
    value.money = units;
    value.term = MakeTerm(u"% / 10000.0", {units}, MultiplyPrecedence);
}

} // namespace

Operand::Operand(const Bound& value)
    : term(value.term) {
}

TermPtr MakeTerm(QStringView form, std::vector<Operand> operands, int precedence) {
    auto term = std::make_shared<Term>();
    term->form = form.toString();
    term->size = form.size();
    for (const Operand& operand : operands)
        term->size += operand.term ? operand.term->size : sizeOfQuery;
    if (term->size > longestExpression)
        RaiseEngine(QueryTooComplex);
    term->operands = std::move(operands);
    term->precedence = precedence;
    return term;
}

Bound Bound::As(DataType asType, TermPtr changed) const {
    Bound bound = *this;
    bound.term = std::move(changed);
    bound.type = asType;
    bound.collated = false;
    return bound;
}

Bound MakeBound(DataType type, TermPtr term) {
    Bound bound;
    bound.term = std::move(term);
    bound.type = type;
    return bound;
}

Bound MakeNull() {
    Bound bound = MakeBound(DataType::Unknown, MakeTerm(u"NULL"));
    bound.null = true;
    return bound;
}

Bound MakeCondition(TermPtr term) {
    Bound bound = MakeBound(DataType::Bit, std::move(term));
    bound.condition = true;
    return bound;
}

Bound MakeCondition(QStringView form, std::vector<Operand> operands, int precedence) {
    return MakeCondition(MakeTerm(form, std::move(operands), precedence));
}

Bound MakeAmount(const TermPtr& units) {
    Bound amount;
    SetMoney(amount, units);
    return amount;
}

Bound StoredValue(const QString& text, DataType type, int size) {
    Bound value = MakeBound(type, MakeTerm(text));
    value.size = size;
    if (type == DataType::Currency)
        SetMoney(value, size > 0 ? MakeTerm(u"zv_keptmoney(%)", {value}) : value.term);
    return value;
}

Bound DeliveredValue(const Bound& column, TermPtr term) {
    Bound value = column.As(column.type, std::move(term));
    if (value.type == DataType::Currency)
        SetMoney(value, value.term);
    return value;
}

Bound Delivered(Bound value) {
    if (value.IsAmount())
        value.term = std::exchange(value.money, {});
    return value;
}

Bound Folded(const Bound& value) {
    return value.collated ? value : Collated(value, u"% COLLATE ZV_FOLD");
}

Bound Sorted(const Bound& value) {
    return Collated(value, u"% COLLATE ZV_SORT");
}

Bound AsNumber(Bound value) {
    if (value.condition)
        value.term = MakeTerm(u"-(%)", {value}, CollatePrecedence);
    else if (value.type == DataType::Bit)
        value.term = MakeTerm(u"-(% <> 0)", {value.At(AddPrecedence)}, CollatePrecedence);
    else
        return value;
    value.type = DataType::Short;
    value.condition = false;
    value.collated = false;
    return value;
}

TermPtr Units(const Bound& value) {
    return UnitsBy(u"zv_tomoney(%)", value);
}

TermPtr ComparedUnits(const Bound& value) {
    return UnitsBy(u"zv_units(%)", value);
}

TermPtr Argument(const Bound& value) {
    if (value.IsAmount())
        return MakeTerm(u"zv_cur(%)", {value.money});
    return value.type == DataType::Single ? MakeTerm(u"zv_sng(%)", {value}) : value.term;
}

} // namespace engine::sql
