#include "platform/engine/sql/Written.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace engine::sql {

QString Written::At(int least) const {
    return precedence >= least ? text : u'(' + text + u')';
}

Written StoredValue(const QString& text, DataType type, int size) {
    Written value;
    value.text = text;
    value.type = type;
    value.size = size;
    if (type == DataType::Currency)
        SetMoney(value, size > 0 ? u"zv_keptmoney("_s + text + u')' : text);
    return value;
}

Written DeliveredValue(const Written& column, const QString& text) {
    Written value = column;
    value.text = text;
    value.precedence = PrimaryPrecedence;
    value.collated = false;
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
    if (!value.money.isEmpty()) {
        value.text = std::exchange(value.money, {});
        value.precedence = PrimaryPrecedence;
    }
    return value;
}

QString Units(const Written& value) {
    if (value.money.isEmpty() && !value.null)
        return u"zv_tomoney("_s + value.text + u')';
    return value.null ? value.text : value.money;
}

QString ComparedUnits(const Written& value) {
    if (value.money.isEmpty() && !value.null)
        return u"zv_units("_s + value.text + u')';
    return value.null ? value.text : value.money;
}

QString Argument(const Written& value) {
    if (!value.money.isEmpty())
        return u"zv_cur("_s + value.money + u')';
    return value.type == DataType::Single ? u"zv_sng("_s + value.text + u')' : value.text;
}

} // namespace engine::sql
