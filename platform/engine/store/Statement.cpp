#include "platform/engine/store/Statement.h"

#include "platform/engine/functions/Functions.h"
#include "platform/engine/functions/Text.h"
#include "platform/runtime/Dates.h"

#include <sqlite3.h>

#include <new>
#include <utility>

namespace engine {

namespace {

// SQLite counts the bytes of a text in an int.
constexpr qsizetype maxStatementUnits = 500'000'000;

} // namespace

Statement::Statement(const Sqlite& db, QStringView text, Doing doing, QString table, Lifetime lifetime)
    : m_db(&db)
    , m_doing(doing)
    , m_table(std::move(table)) {
    if (const int code = Prepare(db.Handle(), text, lifetime); code != SQLITE_OK)
        throw FailureOf(code);
}

Statement& Statement::operator=(Statement&& other) noexcept {
    std::swap(m_db, other.m_db);
    std::swap(m_statement, other.m_statement);
    std::swap(m_doing, other.m_doing);
    m_table.swap(other.m_table);
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

void Statement::Bind(int place, const Value& value) {
    if (const auto* text = value.As<QString>())
        return BindText(place, *text);
    if (const auto* number = value.As<std::int64_t>())
        return BindNumber(place, *number);
    if (const auto* amount = value.As<Money>())
        return BindNumber(place, amount->units);
    if (const auto* truth = value.As<bool>())
        return BindNumber(place, *truth ? 1 : 0);
    if (const auto* bytes = value.As<QByteArray>())
        return BindBytes(place, *bytes);
    if (const auto* fraction = value.As<double>())
        CheckBound(sqlite3_bind_double(m_statement, place, *fraction));
    else if (const auto* single = value.As<float>())
        CheckBound(sqlite3_bind_double(m_statement, place, *single));
    else if (const auto* date = value.As<QDateTime>())
        CheckBound(sqlite3_bind_double(m_statement, place, runtime::NumberFromDate(*date)));
    else
        CheckBound(sqlite3_bind_null(m_statement, place));
}

void Statement::Bind(int place, const Cell& cell) {
    switch (cell.kind) {
    case Cell::Integer:
        return BindNumber(place, cell.integer);
    case Cell::Real:
        return CheckBound(sqlite3_bind_double(m_statement, place, cell.real));
    case Cell::Text:
        return BindText(place, cell.text);
    case Cell::Bytes:
        return BindBytes(place, cell.bytes);
    case Cell::Null:
        return CheckBound(sqlite3_bind_null(m_statement, place));
    }
}

void Statement::BindNumber(int place, std::int64_t number) {
    CheckBound(sqlite3_bind_int64(m_statement, place, number));
}

// A null pointer would bind NULL, and the empty text is not NULL.
void Statement::BindText(int place, QStringView text) {
    const auto bind = [&](const void* start, qsizetype units, sqlite3_destructor_type lifetime) {
        CheckBound(sqlite3_bind_text64(m_statement, place, static_cast<const char*>(start),
                                       static_cast<sqlite3_uint64>(units) * 2, lifetime, SQLITE_UTF16));
    };
    if (const QString marked = functions::Marked(text); !marked.isNull())
        return bind(marked.utf16(), marked.size(), SQLITE_TRANSIENT);
    bind(text.isNull() ? u"" : text.utf16(), text.size(), SQLITE_STATIC);
}

void Statement::BindBytes(int place, QByteArrayView bytes) {
    CheckBound(sqlite3_bind_blob64(m_statement, place, bytes.isNull() ? "" : bytes.data(),
                                   static_cast<sqlite3_uint64>(bytes.size()), SQLITE_STATIC));
}

void Statement::CheckBound(int code) const {
    if (code == SQLITE_NOMEM)
        throw std::bad_alloc();
    if (code != SQLITE_OK && code != SQLITE_RANGE && m_db != nullptr)
        throw FailureOf(code);
}

int Statement::Step() {
    const int code = sqlite3_step(m_statement);
    functions::RethrowFailure();
    return code;
}

bool Statement::Next() {
    const int code = Step();
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        throw FailureOf(code);
    return code == SQLITE_ROW;
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

int Statement::ParameterCount() const {
    return sqlite3_bind_parameter_count(m_statement);
}

Cell Statement::Column(int column) const {
    Cell cell;
    switch (sqlite3_column_type(m_statement, column)) {
    case SQLITE_INTEGER:
        cell.kind = Cell::Integer;
        cell.integer = sqlite3_column_int64(m_statement, column);
        break;
    case SQLITE_FLOAT:
        cell.kind = Cell::Real;
        cell.real = sqlite3_column_double(m_statement, column);
        break;
    case SQLITE_TEXT: {
        const auto* text = static_cast<const char16_t*>(sqlite3_column_text16(m_statement, column));
        if (text == nullptr)
            throw std::bad_alloc();
        cell.kind = Cell::Text;
        cell.text = QStringView(text, sqlite3_column_bytes16(m_statement, column) / 2);
        break;
    }
    case SQLITE_BLOB: {
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(m_statement, column));
        cell.kind = Cell::Bytes;
        cell.bytes = QByteArrayView(bytes, sqlite3_column_bytes(m_statement, column));
        break;
    }
    default:
        break;
    }
    return cell;
}

std::int64_t Statement::Number(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

double Statement::Real(int column) const {
    return sqlite3_column_double(m_statement, column);
}

QString Statement::Text(int column) const {
    const auto* text = static_cast<const char16_t*>(sqlite3_column_text16(m_statement, column));
    return QStringView(text, sqlite3_column_bytes16(m_statement, column) / 2).toString();
}

bool Statement::IsNull(int column) const {
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

} // namespace engine
