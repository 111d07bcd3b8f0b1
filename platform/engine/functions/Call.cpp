#include "platform/engine/functions/Call.h"

#include "platform/engine/functions/Text.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Failure.h"
#include "platform/runtime/Numbers.h"

#include <cmath>
#include <cstring>
#include <exception>
#include <limits>
#include <new>
#include <utility>

namespace engine::functions {

namespace {

/// What a function of ours has thrown, on its way round SQLite's frames.
thread_local std::exception_ptr thrown;

// Marks of types that SQLite does not know; they live from one function to the next around it.
constexpr unsigned moneyMark = 'c';
constexpr unsigned singleMark = 's';

/// Whether it is no wider than the dialect's whole numbers.
bool IsLong(std::int64_t whole) {
    return whole >= std::numeric_limits<std::int32_t>::min() &&
           whole <= std::numeric_limits<std::int32_t>::max();
}

void SetText(sqlite3_context* context, const QString& text) {
    const QString marked = Marked(text);
    const QString& given = marked.isNull() ? text : marked;
    sqlite3_result_text16(context, given.utf16(), static_cast<int>(given.size() * 2), SQLITE_TRANSIENT);
}

} // namespace

void CheckRegistered(int code) {
    if (code != SQLITE_OK)
        throw std::bad_alloc();
}

bool Arguments::IsNull(int place) const {
    return sqlite3_value_type(m_values[place]) == SQLITE_NULL;
}

bool Arguments::AnyNull() const {
    for (int place = 0; place < m_count; ++place) {
        if (IsNull(place))
            return true;
    }
    return false;
}

bool Arguments::IsText(int place) const {
    return sqlite3_value_type(m_values[place]) == SQLITE_TEXT;
}

bool Arguments::IsWhole(int place) const {
    return At(place).As<std::int64_t>() != nullptr;
}

bool Arguments::IsBytes(int place) const {
    return sqlite3_value_type(m_values[place]) == SQLITE_BLOB;
}

Value Arguments::At(int place) const {
    return FromSqlite(m_values[place]);
}

QString Arguments::Text(int place) const {
    return IsText(place) ? TextView(place).toString() : At(place).Text();
}

QStringView Arguments::TextView(int place) const {
    const auto* text = static_cast<const char16_t*>(sqlite3_value_text16(m_values[place]));
    if (!text)
        return {};
    return {text, sqlite3_value_bytes16(m_values[place]) / 2};
}

std::optional<Money> Arguments::Units(int place) const {
    return IsNull(place) ? std::nullopt : std::optional(Money{sqlite3_value_int64(m_values[place])});
}

double Arguments::Number(int place) const {
    return At(place).Number();
}

std::int32_t Arguments::Long(int place) const {
    return At(place).Long();
}

QDateTime Arguments::Date(int place) const {
    if (IsText(place))
        return runtime::TextToDate(TextView(place).toString());
    return DateOf(Number(place));
}

QDateTime DateOf(double number) {
    return runtime::DateFromNumber(number);
}

double NumberOf(const QDateTime& date) {
    if (!date.isValid() || date.date().year() < 100 || date.date().year() > 9999)
        runtime::Raise(runtime::InvalidCall);
    return runtime::NumberFromDate(date);
}

Value FromSqlite(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER: {
        const std::int64_t whole = sqlite3_value_int64(value);
        if (sqlite3_value_subtype(value) == moneyMark)
            return Money{whole};
        if (!IsLong(whole))
            return static_cast<double>(whole);
        return whole;
    }
    case SQLITE_FLOAT:
        if (sqlite3_value_subtype(value) == singleMark)
            return static_cast<float>(sqlite3_value_double(value));
        return sqlite3_value_double(value);
    case SQLITE_TEXT: {
        const auto* text = static_cast<const QChar*>(sqlite3_value_text16(value));
        return Value(text ? QString(text, sqlite3_value_bytes16(value) / 2) : QString());
    }
    case SQLITE_BLOB: {
        const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
        return Value(QByteArray(bytes, bytes ? sqlite3_value_bytes(value) : 0));
    }
    default:
        return {};
    }
}

void SetResult(sqlite3_context* context, const Value& value) {
    if (const auto* whole = value.As<std::int64_t>()) {
        if (IsLong(*whole))
            sqlite3_result_int64(context, *whole);
        else
            sqlite3_result_double(context, static_cast<double>(*whole));
    } else if (const auto* amount = value.As<Money>()) {
        sqlite3_result_int64(context, amount->units);
        sqlite3_result_subtype(context, moneyMark);
    } else if (const auto* single = value.As<float>()) {
        sqlite3_result_double(context, *single);
        sqlite3_result_subtype(context, singleMark);
    } else if (const auto* number = value.As<double>())
        sqlite3_result_double(context, *number);
    else if (const auto* text = value.As<QString>())
        SetText(context, *text);
    else if (const auto* date = value.As<QDateTime>())
        sqlite3_result_double(context, NumberOf(*date));
    else if (const auto* truth = value.As<bool>())
        sqlite3_result_int(context, *truth ? 1 : 0);
    else if (const auto* bytes = value.As<QByteArray>())
        sqlite3_result_blob64(context, bytes->constData(), static_cast<sqlite3_uint64>(bytes->size()),
                              SQLITE_TRANSIENT);
    else
        sqlite3_result_null(context);
}

void KeepFailure() noexcept {
    thrown = std::current_exception();
}

void SetFailure(sqlite3_context* context) noexcept {
    KeepFailure();
    sqlite3_result_error_code(context, SQLITE_ERROR);
}

void RethrowFailure() {
    if (thrown)
        std::rethrow_exception(std::exchange(thrown, nullptr));
}

} // namespace engine::functions
