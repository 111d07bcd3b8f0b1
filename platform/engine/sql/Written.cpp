#include "platform/engine/sql/Written.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

TypeKind KindOf(DataType type) {
    switch (type) {
    case DataType::Unknown:
        return TypeKind::Unknown;
    case DataType::Date:
        return TypeKind::Date;
    case DataType::Text:
    case DataType::Memo:
    case DataType::Guid:
        return TypeKind::Text;
    case DataType::Binary:
        return TypeKind::Bytes;
    default:
        return TypeKind::Number;
    }
}

bool IsWholeNumber(DataType type) {
    return type == DataType::Byte || type == DataType::Short || type == DataType::Long ||
           type == DataType::Counter;
}

DataType CommonType(DataType a, DataType b) {
    if (a == b)
        return a;
    if (KindOf(a) != KindOf(b))
        return DataType::Unknown;
    if (KindOf(a) == TypeKind::Text)
        return a == DataType::Memo || b == DataType::Memo ? DataType::Memo : DataType::Text;
    const auto plain = [](DataType type) {
        if (type == DataType::Counter)
            return DataType::Long;
        return type == DataType::Bit ? DataType::Short : type;
    };
    const DataType left = plain(a);
    const DataType right = plain(b);
    if ((left == DataType::Single && right == DataType::Long) ||
        (right == DataType::Single && left == DataType::Long))
        return DataType::Double;
    if ((left == DataType::Currency && right < DataType::Currency && right >= DataType::Single) ||
        (right == DataType::Currency && left < DataType::Currency && left >= DataType::Single))
        return DataType::Double;
    return std::max(left, right);
}

QString Written::At(int least) const {
    return precedence >= least ? text : u'(' + text + u')';
}

QString Quoted(const QString& name) {
    QString text = name;
    return u'"' + text.replace(u'"', u"\"\""_s) + u'"';
}

} // namespace engine::sql
