#include "platform/engine/store/Sqlite.h"

#include "platform/engine/functions/Functions.h"
#include "platform/engine/store/Statement.h"
#include "platform/runtime/System.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <limits>

namespace engine {

namespace {

constexpr sqlite3_int64 heapLimit = sqlite3_int64{2} << 30;
constexpr int longestValue = 1 << 27; ///< bytes; a definition in a strange file could ask for any length

// What a strange file brings along as code never runs.
void Harden(sqlite3* db) {
    struct Setting {
        int option;
        int value;
    };
    constexpr auto settings = std::to_array<Setting>({
        {SQLITE_DBCONFIG_DEFENSIVE, 1},
        {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
        {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
        {SQLITE_DBCONFIG_ENABLE_VIEW, 0},
        {SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
        {SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0},
        {SQLITE_DBCONFIG_ENABLE_FKEY, 0},
        {SQLITE_DBCONFIG_LEGACY_ALTER_TABLE, 1}, // what does not run may be broken without harm to a rename
        {SQLITE_DBCONFIG_DQS_DDL, 0},
        {SQLITE_DBCONFIG_DQS_DML, 0},
    });
    for (const Setting& setting : settings)
        sqlite3_db_config(db, setting.option, setting.value, nullptr);
    sqlite3_limit(db, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_limit(db, SQLITE_LIMIT_LENGTH, longestValue);
}

} // namespace

Sqlite::Sqlite(const QString& file, QString path)
    : m_path(std::move(path)) {
    sqlite3_hard_heap_limit64(heapLimit);
    const QByteArray native = runtime::NativePath(file).toUtf8();
    const int code = sqlite3_open_v2(native.constData(), &m_db,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
                                     native.startsWith(R"(\\?\)") ? "win32-longpath" : nullptr);
    try {
        if (code != SQLITE_OK)
            throw FailureOf(code, Doing::Open);
        Harden(m_db);
        functions::RegisterCollations(m_db);
        functions::RegisterFunctions(m_db);
    } catch (...) {
        sqlite3_close(m_db);
        throw;
    }
}

Sqlite::~Sqlite() {
    [[maybe_unused]] const int code = sqlite3_close(m_db);
    Q_ASSERT(code == SQLITE_OK); // a statement left open
}

void Sqlite::Run(const char* text, Doing doing, const QString& table) const {
    if (const int code = Try(text); code != SQLITE_OK)
        throw FailureOf(code, doing, table);
}

int Sqlite::Try(const char* text) const noexcept {
    return sqlite3_exec(m_db, text, nullptr, nullptr, nullptr);
}

std::int64_t Sqlite::Number(const char* question) const {
    Statement statement(*this, QString::fromLatin1(question), Doing::Open);
    return statement.Next() ? statement.Number(0) : 0;
}

runtime::Failure Sqlite::FailureOf(int code, Doing doing, const QString& table) const {
    return FailureFrom(m_db, code, doing, m_path, table);
}

int Sqlite::Changes() const noexcept {
    constexpr sqlite3_int64 most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(sqlite3_changes64(m_db), most));
}

std::int64_t Sqlite::LastRow() const noexcept {
    return sqlite3_last_insert_rowid(m_db);
}

sqlite3_file* Sqlite::File() const noexcept {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(m_db, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    return file;
}

bool Sqlite::IsReadOnly() const {
    return sqlite3_db_readonly(m_db, "main") == 1;
}

bool Sqlite::InTransaction() const noexcept {
    return sqlite3_get_autocommit(m_db) == 0;
}

} // namespace engine
