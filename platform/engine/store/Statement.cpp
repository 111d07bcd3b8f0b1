#include "platform/engine/store/Statement.h"

#include "platform/engine/functions/Functions.h"

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
    const unsigned flags = lifetime == Lifetime::Kept ? SQLITE_PREPARE_PERSISTENT : 0;
    const int code = text.size() > maxStatementUnits
                         ? SQLITE_TOOBIG
                         : sqlite3_prepare16_v3(db.Handle(), text.utf16(), static_cast<int>(text.size() * 2),
                                                flags, &m_statement, nullptr);
    if (code != SQLITE_OK)
        throw FailureOf(code);
}

Statement& Statement::operator=(Statement&& other) noexcept {
    std::swap(m_db, other.m_db);
    std::swap(m_statement, other.m_statement);
    std::swap(m_doing, other.m_doing);
    m_table.swap(other.m_table);
    return *this;
}

Statement::~Statement() {
    sqlite3_finalize(m_statement);
}

void Statement::Bind(int place, const Value& value) {
    CheckBound(BindCell(m_statement, place, CellOf(value)));
}

void Statement::Bind(int place, const Cell& cell) {
    CheckBound(BindCell(m_statement, place, cell));
}

void Statement::BindNumber(int place, std::int64_t number) {
    Bind(place, Cell(number));
}

void Statement::BindText(int place, QStringView text) {
    Bind(place, Cell(text));
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
    // The connection has no mutex, so its values may be asked where they lie.
    return CellOf(sqlite3_column_value(m_statement, column));
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

} // namespace engine
