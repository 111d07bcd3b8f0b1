#include "platform/engine/store/Cell.h"

#include "platform/runtime/Dates.h"

#include <sqlite3.h>

#include <new>

namespace engine {

namespace {

/// A text as SQLite has to get it. SQLite takes a mark of the byte order at the start away, or obeys it, so
/// one of its own stands in front of such a text; null for any other text.
QString Marked(QStringView text) {
    constexpr char16_t mark = 0xFEFF;
    if (text.startsWith(QChar(mark)) || text.startsWith(QChar(0xFFFE)))
        return QChar(mark) + text.toString();
    return {};
}

// SQLite takes a null pointer for NULL, but an empty text and empty bytes are none.

/// `give` takes the start of a text, its bytes and who keeps it.
template <class Give>
auto GiveText(QStringView text, sqlite3_destructor_type keeps, Give give) {
    const QString marked = Marked(text);
    if (!marked.isNull()) {
        text = marked;
        keeps = SQLITE_TRANSIENT;
    }
    return give(reinterpret_cast<const char*>(text.isNull() ? u"" : text.utf16()),
                static_cast<sqlite3_uint64>(text.size()) * 2, keeps);
}

const char* StartOf(QByteArrayView bytes) {
    return bytes.isNull() ? "" : bytes.data();
}

} // namespace

Cell CellOf(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
        return Cell(std::int64_t{sqlite3_value_int64(value)});
    case SQLITE_FLOAT:
        return Cell(sqlite3_value_double(value));
    case SQLITE_TEXT: {
        const auto* text = static_cast<const char16_t*>(sqlite3_value_text16(value));
        if (text == nullptr)
            throw std::bad_alloc();
        return Cell(QStringView(text, sqlite3_value_bytes16(value) / 2));
    }
    case SQLITE_BLOB: {
        const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
        return Cell(QByteArrayView(bytes, bytes ? sqlite3_value_bytes(value) : 0));
    }
    default:
        return {};
    }
}

Cell CellOf(const Value& value) {
    if (const auto* text = value.As<QString>())
        return Cell(QStringView(*text));
    if (const auto* number = value.As<std::int64_t>())
        return Cell(*number);
    if (const auto* fraction = value.As<double>())
        return Cell(*fraction);
    if (const auto* single = value.As<float>())
        return Cell(double{*single});
    if (const auto* amount = value.As<Money>())
        return Cell(amount->units);
    if (const auto* truth = value.As<bool>())
        return Cell(std::int64_t{*truth});
    if (const auto* date = value.As<QDateTime>())
        return Cell(runtime::NumberFromDate(*date));
    if (const auto* bytes = value.As<QByteArray>())
        return Cell(QByteArrayView(*bytes));
    return {};
}

int BindCell(sqlite3_stmt* statement, int place, const Cell& cell) {
    switch (cell.kind) {
    case Cell::Integer:
        return sqlite3_bind_int64(statement, place, cell.integer);
    case Cell::Real:
        return sqlite3_bind_double(statement, place, cell.real);
    case Cell::Text:
        return GiveText(cell.text, SQLITE_STATIC, [=](const char* start, sqlite3_uint64 bytes, auto keeps) {
            return sqlite3_bind_text64(statement, place, start, bytes, keeps, SQLITE_UTF16);
        });
    case Cell::Bytes:
        return sqlite3_bind_blob64(statement, place, StartOf(cell.bytes),
                                   static_cast<sqlite3_uint64>(cell.bytes.size()), SQLITE_STATIC);
    case Cell::Null:
        break;
    }
    return sqlite3_bind_null(statement, place);
}

void ResultCell(sqlite3_context* context, const Cell& cell) {
    switch (cell.kind) {
    case Cell::Integer:
        return sqlite3_result_int64(context, cell.integer);
    case Cell::Real:
        return sqlite3_result_double(context, cell.real);
    case Cell::Text:
        return GiveText(cell.text, SQLITE_TRANSIENT,
                        [=](const char* start, sqlite3_uint64 bytes, auto keeps) {
                            sqlite3_result_text64(context, start, bytes, keeps, SQLITE_UTF16);
                        });
    case Cell::Bytes:
        return sqlite3_result_blob64(context, StartOf(cell.bytes),
                                     static_cast<sqlite3_uint64>(cell.bytes.size()), SQLITE_TRANSIENT);
    case Cell::Null:
        return sqlite3_result_null(context);
    }
}

} // namespace engine
