#include "platform/engine/store/Statement.h"

#include "platform/engine/functions/Functions.h"
#include "platform/engine/functions/Text.h"
#include "platform/runtime/Dates.h"

#include <sqlite3.h>

#include <utility>

namespace engine {

namespace {

// SQLite counts the bytes of a text in an int.
constexpr qsizetype maxStatementUnits = 500'000'000;

} // namespace

Statement& Statement::operator=(Statement&& other) noexcept {
    if (this != &other) {
        Finish();
        m_statement = std::exchange(other.m_statement, nullptr);
    }
    return *this;
}

int Statement::Prepare(sqlite3* db, QStringView text, Lifetime lifetime) {
    Finish();
    const unsigned flags = lifetime == Lifetime::Kept ? SQLITE_PREPARE_PERSISTENT : 0;
    if (text.size() > maxStatementUnits)
        return SQLITE_TOOBIG;
    return sqlite3_prepare16_v3(db, text.utf16(), static_cast<int>(text.size() * 2), flags, &m_statement,
                                nullptr);
}

void Statement::Finish() noexcept {
    sqlite3_finalize(std::exchange(m_statement, nullptr));
}

int Statement::Bind(int place, const Value& value) {
    if (const auto* text = value.As<QString>())
        return BindText(place, *text);
    if (const auto* number = value.As<std::int64_t>())
        return BindNumber(place, *number);
    if (const auto* fraction = value.As<double>())
        return sqlite3_bind_double(m_statement, place, *fraction);
    if (const auto* single = value.As<float>())
        return sqlite3_bind_double(m_statement, place, *single);
    if (const auto* amount = value.As<Money>())
        return BindNumber(place, amount->units);
    if (const auto* truth = value.As<bool>())
        return sqlite3_bind_int(m_statement, place, *truth ? 1 : 0);
    if (const auto* date = value.As<QDateTime>())
        return sqlite3_bind_double(m_statement, place, runtime::NumberFromDate(*date));
    if (const auto* bytes = value.As<QByteArray>())
        return sqlite3_bind_blob64(m_statement, place, bytes->constData(),
                                   static_cast<sqlite3_uint64>(bytes->size()), SQLITE_STATIC);
    return sqlite3_bind_null(m_statement, place);
}

int Statement::BindNumber(int place, std::int64_t number) {
    return sqlite3_bind_int64(m_statement, place, number);
}

int Statement::BindText(int place, QStringView text) {
    if (const QString marked = functions::Marked(text); !marked.isNull())
        return sqlite3_bind_text64(m_statement, place, reinterpret_cast<const char*>(marked.utf16()),
                                   static_cast<sqlite3_uint64>(marked.size()) * 2, SQLITE_TRANSIENT,
                                   SQLITE_UTF16);
    // A null pointer would bind NULL, and the empty text is not NULL.
    static constexpr char16_t nothing[] = u"";
    const void* start = text.isNull() ? static_cast<const void*>(nothing) : text.utf16();
    return sqlite3_bind_text64(m_statement, place, static_cast<const char*>(start),
                               static_cast<sqlite3_uint64>(text.size()) * 2, SQLITE_STATIC, SQLITE_UTF16);
}

int Statement::Step() {
    const int code = sqlite3_step(m_statement);
    functions::RethrowFailure();
    return code;
}

void Statement::Reset() noexcept {
    if (m_statement == nullptr)
        return;
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
}

int Statement::ColumnCount() const {
    return sqlite3_column_count(m_statement);
}

std::int64_t Statement::Number(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

QString Statement::Text(int column) const {
    const auto* text = static_cast<const char16_t*>(sqlite3_column_text16(m_statement, column));
    return QStringView(text, sqlite3_column_bytes16(m_statement, column) / 2).toString();
}

bool Statement::IsNull(int column) const {
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

} // namespace engine
