#include "platform/engine/sql/Written.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

/// With a collation, if the value is or may be a text.
Written Collated(const Written& value, const QString& collation) {
    if ((!value.IsText() && value.Kind() != TypeKind::Unknown) || value.null)
        return Delivered(value);
    Written collated = value;
    collated.text = value.At(CollatePrecedence) + u" COLLATE "_s + collation;
    collated.precedence = CollatePrecedence;
    return collated;
}

QString UnitsBy(const QString& function, const Written& value) {
    if (value.null)
        return value.text;
    return value.IsAmount() ? value.money : function + value.text + u')';
}

} // namespace

QString Written::At(int least) const {
    return precedence >= least ? text : u'(' + text + u')';
}

Written Written::As(const QString& changed, DataType asType) const {
    Written written = *this;
    written.text = changed;
    written.type = asType;
    written.precedence = PrimaryPrecedence;
    written.collated = false;
    return written;
}

Written MakeWritten(const QString& text, DataType type, int precedence) {
    Written written;
    written.text = text;
    written.type = type;
    written.precedence = precedence;
    return written;
}

Written MakeNull() {
    Written written = MakeWritten(u"NULL"_s, DataType::Unknown);
    written.null = true;
    return written;
}

Written MakeCondition(const QString& text, int precedence) {
    Written written = MakeWritten(text, DataType::Bit, precedence);
    written.condition = true;
    return written;
}

Written MakeAmount(const QString& units) {
    Written amount;
    SetMoney(amount, units);
    return amount;
}

Written StoredValue(const QString& text, DataType type, int size) {
    Written value = MakeWritten(text, type);
    value.size = size;
    if (type == DataType::Currency)
        SetMoney(value, size > 0 ? u"zv_keptmoney("_s + text + u')' : text);
    return value;
}

Written DeliveredValue(const Written& column, const QString& text) {
    Written value = column.As(text, column.type);
    if (value.type == DataType::Currency)
        SetMoney(value, text);
    return value;
}

void SetMoney(Written& value, const QString& units) {
    value.type = DataType::Currency;
    value.money = units;
    value.text = units + u" / 10000.0"_s;
    value.precedence = MultiplyPrecedence;
}

Written Delivered(Written value) {
    if (value.IsAmount()) {
        value.text = std::exchange(value.money, {});
        value.precedence = PrimaryPrecedence;
    }
    return value;
}

Written Folded(const Written& value) {
    return value.collated ? value : Collated(value, u"ZV_FOLD"_s);
}

Written Sorted(const Written& value) {
    return Collated(value, u"ZV_SORT"_s);
}

Written AsNumber(Written value) {
    if (value.condition)
        value.text = u"-("_s + value.text + u')';
    else if (value.type == DataType::Bit)
        value.text = u"-("_s + value.At(AddPrecedence) + u" <> 0)"_s;
    else
        return value;
    value.precedence = CollatePrecedence;
    value.type = DataType::Short;
    value.condition = false;
    value.collated = false;
    return value;
}

QString Units(const Written& value) {
    return UnitsBy(u"zv_tomoney("_s, value);
}

QString ComparedUnits(const Written& value) {
    return UnitsBy(u"zv_units("_s, value);
}

QString Argument(const Written& value) {
    if (value.IsAmount())
        return u"zv_cur("_s + value.money + u')';
    return value.type == DataType::Single ? u"zv_sng("_s + value.text + u')' : value.text;
}

} // namespace engine::sql
