// A value assigned to a column: what the column's type makes of it, or the failure that the engine raises.

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"

#include <cmath>
#include <limits>

namespace engine::functions {

namespace {

/// The number assigned; failure 3464 if the value is none, 3349 if it is too large for any column.
double NumberFor(const Value& value) {
    try {
        return value.Number();
    } catch (const runtime::Failure& failure) {
        RaiseEngine(failure.number() == runtime::Overflow ? NumberOutOfRange : TypeMismatchInCriteria);
    }
}

Value WholeFor(const Value& value, std::int64_t least, std::int64_t greatest) {
    if (const auto* whole = value.As<std::int64_t>()) {
        if (*whole < least || *whole > greatest)
            RaiseEngine(NumberOutOfRange);
        return *whole;
    }
    const double rounded = runtime::RoundHalfEven(NumberFor(value));
    if (!(rounded >= static_cast<double>(least) && rounded <= static_cast<double>(greatest)))
        RaiseEngine(NumberOutOfRange);
    return static_cast<std::int64_t>(rounded);
}

template <class Whole>
Value WholeOf(const Value& value) {
    return WholeFor(value, std::numeric_limits<Whole>::min(), std::numeric_limits<Whole>::max());
}

/// `digits`: 0, or those of a column that keeps a fraction.
Value MoneyFor(const Value& value, int digits) {
    try {
        const Money amount = value.Money();
        return digits > 0 ? Value(amount.Number()) : Value(amount);
    } catch (const runtime::Failure& failure) {
        RaiseEngine(failure.number() == runtime::Overflow ? NumberOutOfRange : TypeMismatchInCriteria);
    }
}

double NumberWithin(const Value& value, double greatest) {
    const double number = NumberFor(value);
    if (!(std::abs(number) <= greatest))
        RaiseEngine(NumberOutOfRange);
    return number;
}

Value DateFor(const Value& value) {
    if (const auto* text = value.As<QString>()) {
        if (const auto date = runtime::TryTextToDate(*text))
            return runtime::NumberFromDate(*date);
    }
    const double number = NumberFor(value);
    if (!runtime::IsDateNumber(number))
        RaiseEngine(NumberOutOfRange);
    return number;
}

Value TextFor(const Value& value, int size) {
    if (value.As<QByteArray>())
        RaiseEngine(TypeMismatchInCriteria);
    QString text = value.Text();
    if (size > 0 && text.size() > size)
        RaiseEngine(ValueTooLong);
    return text;
}

Value BytesFor(const Value& value, int size) {
    QByteArray bytes;
    if (const auto* given = value.As<QByteArray>()) {
        bytes = *given;
    } else if (const auto* text = value.As<QString>()) {
        bytes = QByteArray(reinterpret_cast<const char*>(text->utf16()), text->size() * 2);
    } else {
        RaiseEngine(TypeMismatchInCriteria);
    }
    if (size > 0 && bytes.size() > size)
        RaiseEngine(ValueTooLong);
    return bytes;
}

} // namespace

Value ToColumn(const Value& value, DataType type, int size, const QString& /*name*/) {
    if (value.IsNull())
        return type == DataType::Bit ? Value(false) : Value();
    switch (type) {
    case DataType::Bit:
        return NumberFor(value) != 0;
    case DataType::Byte:
        return WholeOf<std::uint8_t>(value);
    case DataType::Short:
        return WholeOf<std::int16_t>(value);
    case DataType::Long:
    case DataType::Counter:
        return WholeOf<std::int32_t>(value);
    case DataType::Single:
        return static_cast<double>(
            static_cast<float>(NumberWithin(value, std::numeric_limits<float>::max())));
    case DataType::Double:
        return NumberWithin(value, std::numeric_limits<double>::max());
    case DataType::Currency:
        return MoneyFor(value, size);
    case DataType::Date:
        return DateFor(value);
    case DataType::Text:
    case DataType::Memo:
        return TextFor(value, size);
    case DataType::Binary:
        return BytesFor(value, size);
    case DataType::Guid:
        return TextFor(value, guidSize);
    case DataType::Unknown:
        break;
    }
    return value;
}

} // namespace engine::functions
