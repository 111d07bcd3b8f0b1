// A value assigned to a column: what the column's type makes of it, or the failure that the engine raises.

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"

#include <cmath>
#include <limits>

namespace engine::functions {

namespace {

double NumberWithin(const Value& value, double greatest) {
    const double number = value.Number();
    if (!(std::abs(number) <= greatest))
        runtime::Raise(runtime::Overflow);
    return number;
}

double DateNumber(const Value& value) {
    if (const auto* text = value.As<QString>()) {
        if (const auto date = runtime::TryTextToDate(*text))
            return runtime::NumberFromDate(*date);
    }
    const double number = value.Number();
    if (!runtime::IsDateNumber(number))
        runtime::Raise(runtime::Overflow);
    return number;
}

/// A text or bytes that their column has room for; it has no limit where `size` is 0.
Value Sized(auto content, int size) {
    if (size > 0 && content.size() > size)
        RaiseEngine(ValueTooLong);
    return content;
}

Value TextFor(const Value& value, int size) {
    if (value.As<QByteArray>())
        runtime::Raise(runtime::TypeMismatch);
    return Sized(value.Text(), size);
}

Value BytesFor(const Value& value, int size) {
    if (const auto* bytes = value.As<QByteArray>())
        return Sized(*bytes, size);
    const auto* text = value.As<QString>();
    if (!text)
        runtime::Raise(runtime::TypeMismatch);
    return Sized(QByteArray(reinterpret_cast<const char*>(text->utf16()), text->size() * 2), size);
}

/// The value in the column's form, with the failures of conversions as they come.
Value Converted(const Value& value, DataType type, int size) {
    switch (type) {
    case DataType::Bit:
        return value.Number() != 0;
    case DataType::Byte:
        return int{runtime::RoundedTo<std::uint8_t>(value.Number())};
    case DataType::Short:
        return int{runtime::RoundedTo<std::int16_t>(value.Number())};
    case DataType::Long:
    case DataType::Counter:
        return value.Long();
    case DataType::Single:
        return double{static_cast<float>(NumberWithin(value, std::numeric_limits<float>::max()))};
    case DataType::Double:
        return NumberWithin(value, std::numeric_limits<double>::max());
    case DataType::Currency: // the size is 0, or the digits of a column that keeps a fraction
        return size > 0 ? Value(value.Money().Number()) : Value(value.Money());
    case DataType::Date:
        return DateNumber(value);
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

} // namespace

Value ToColumn(const Value& value, DataType type, int size) {
    if (value.IsNull())
        return type == DataType::Bit ? Value(false) : Value();
    try {
        return Converted(value, type, size);
    } catch (const runtime::Failure& failure) {
        if (failure.number() == runtime::Overflow)
            RaiseEngine(NumberOutOfRange);
        if (failure.number() == runtime::TypeMismatch)
            RaiseEngine(TypeMismatchInCriteria);
        throw;
    }
}

} // namespace engine::functions
