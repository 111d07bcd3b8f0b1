#include "platform/engine/schema/TableText.h"

#include "platform/engine/schema/LookUps.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/Lexer.h"
#include "platform/engine/store/Sqlite.h"
#include "platform/engine/store/Statement.h"

#include <QMap>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

/// What a primary key without a name of its own is called.
constexpr QStringView namelessKey = u"PrimaryKey";

/// The name of a UNIQUE constraint that stands for a primary key beside a counter begins so.
constexpr QStringView primaryKeyMark = u"PRIMARY KEY ";

/// The counter of a table whose key it is not carries this note.
constexpr QStringView noteNotKey = u"NotKey";

QString CheckName(const ColumnInfo& column, QStringView declaration) {
    return column.name + u' ' + declaration.toString();
}

QString Check(const ColumnInfo& column, QStringView declaration, const QString& condition) {
    return u" CONSTRAINT %1 CHECK (%2)"_s.arg(QuoteName(CheckName(column, declaration)), condition);
}

/// Names of indexes are unique within the table alone, so the table stands in front.
QString FileIndexName(const QString& table, const QString& index) {
    return table + u'.' + index; // no name of the dialect holds a point
}

/// Whether the row number is the key under a name, which only a constraint of the table can hold.
bool IsNamedKey(const TableInfo& table, int rowNumber) {
    const QString name = table.IsKey(rowNumber) ? table.PrimaryKey()->name : QString();
    return !name.isEmpty() && name != namelessKey;
}

/// A name of the file, however it is quoted.
QString NameOf(const sql::Token& token) {
    return token.kind == sql::TokenKind::Text ? sql::Lexer::LiteralValue(token).Text()
                                              : sql::Lexer::NameOf(token).toString();
}

/// What the constraint names of a CREATE TABLE text tell, whatever the text.
class Declarations {
public:
    explicit Declarations(const QString& createTable) {
        sql::Lexer lexer(createTable);
        for (sql::Token token = lexer.Next(); token.kind != sql::TokenKind::End; token = lexer.Next())
            if (token.IsWord("CONSTRAINT"))
                Read(lexer);
    }

    /// Puts type, size and the like into a column, by its name.
    void Apply(ColumnInfo& column) const {
        column.allowZeroLength = true;
        const QString prefix = CheckName(column, {});
        for (const QString& check : m_checks) {
            if (!check.startsWith(prefix))
                continue;
            const QString declaration = check.sliced(prefix.size());
            if (declaration == noteNoEmptyText)
                column.allowZeroLength = false;
            else if (declaration == noteRequired)
                column.required = column.requiredLater = true;
            else if (const auto sized = SizedType::FromText(declaration))
                static_cast<SizedType&>(column) = *sized;
        }
        column.allowZeroLength = column.allowZeroLength && IsText(column.type);
    }

    /// Name of the PRIMARY KEY or UNIQUE constraint over these columns; empty if it has none.
    QString KeyName(const QStringList& columns) const {
        const auto key = std::ranges::find_if(m_keys, [&](const IndexInfo& candidate) {
            return std::ranges::equal(candidate.columns, columns, SameName);
        });
        return key == m_keys.end() ? QString() : key->name;
    }

    /// Whether the counter is not the key of its table.
    bool IsNotKey(const ColumnInfo& counter) const {
        return m_checks.contains(CheckName(counter, noteNotKey));
    }

private:
    /// Reads on behind CONSTRAINT, to its condition or the end of its columns.
    void Read(sql::Lexer& lexer) {
        const QString name = NameOf(lexer.Next());
        const sql::Token kind = lexer.Next();
        if (kind.IsWord("CHECK"))
            m_checks += name;
        if (kind.IsWord("PRIMARY"))
            lexer.Next(); // KEY
        if ((!kind.IsWord("PRIMARY") && !kind.IsWord("UNIQUE")) || !lexer.Next().Is(u'('))
            return;
        IndexInfo& key = m_keys.emplace_back(IndexInfo{name, {}});
        for (sql::Token token = lexer.Next(); token.kind != sql::TokenKind::End && !token.Is(u')');
             token = lexer.Next())
            if (!token.Is(u',') && !token.IsWord("AUTOINCREMENT"))
                key.columns += NameOf(token);
    }

    QStringList m_checks; ///< names of CHECK constraints: "column declaration"
    std::vector<IndexInfo> m_keys;
};

/// Whether a column's definition, in a text of ours, does not say NOT NULL: SQLite itself implies it in a
/// key.
bool IsImplied(const QString& createTable, const QString& column, const QString& type) {
    const QString start = QuoteName(column) + u' ' + type;
    return createTable.contains(start) && !createTable.contains(start + QLatin1String(" NOT NULL"));
}

/// Gives the table its columns; those of SQLite's own key.
QStringList ReadColumns(const Sqlite& db, TableInfo& table, const QString& text,
                        const Declarations& declarations) {
    Statement rows(db, u"SELECT name, type, \"notnull\", pk FROM pragma_table_info(?1) ORDER BY cid");
    rows.BindText(1, table.name);
    QMap<std::int64_t, QString> key; // by place in the key
    while (rows.Next()) {
        ColumnInfo column{SizedType::FromStored(rows.Text(1)), rows.Text(0)};
        column.required = rows.Number(2) != 0 && !IsImplied(text, column.name, rows.Text(1));
        declarations.Apply(column);
        if (const std::int64_t place = rows.Number(3); place > 0)
            key[place] = column.name;
        table.columns.push_back(std::move(column));
    }
    return key.values();
}

/// An index as SQLite lists it.
struct FileIndex {
    IndexInfo info;
    bool constraint;
};

std::vector<FileIndex> ListIndexes(const Sqlite& db, const QString& table) {
    Statement rows(db, u"SELECT l.name, l.\"unique\", l.origin, i.name FROM pragma_index_list(?1) AS l, "
                       u"pragma_index_info(l.name) AS i WHERE l.origin <> 'pk' ORDER BY l.seq DESC, i.seqno");
    rows.BindText(1, table);
    std::vector<FileIndex> found;
    while (rows.Next()) {
        const QString name = rows.Text(0);
        if (IsLookUp(table, name))
            continue;
        if (found.empty() || found.back().info.name != name)
            found.push_back({{name, {}, false, rows.Number(1) != 0}, rows.Text(2) == u'u'});
        found.back().info.columns += rows.Text(3);
    }
    return found;
}

} // namespace

QString ColumnText(const TableInfo& table, int place) {
    const ColumnInfo& column = table.At(place);
    const QString name = QuoteName(column.name);
    const bool counter = column.type == DataType::Counter;
    QString text = name + u' ' + column.StoredAs();
    if (column.required && !column.requiredLater)
        text += QLatin1String(" NOT NULL");
    if (place == table.RowNumberColumn() && !IsNamedKey(table, place))
        text += QLatin1String(counter ? " PRIMARY KEY AUTOINCREMENT" : " PRIMARY KEY");
    if (column.type == DataType::Bit)
        text += QLatin1String(" DEFAULT 0");
    if (IsText(column.type))
        text += QLatin1String(" COLLATE ZV_FOLD");
    if (column.unique && !table.IsKey(place))
        text += QLatin1String(" UNIQUE");
    text += Check(column, column.TypeText(), column.TypeCheck(name));
    if (IsText(column.type) && !column.allowZeroLength)
        text += Check(column, noteNoEmptyText, u"length(CAST(%1 AS BLOB)) > 0"_s.arg(name));
    const QString filled = name + QLatin1String(" IS NOT NULL");
    if (counter && !table.IsKey(place))
        text += Check(column, noteNotKey, filled);
    if (column.requiredLater)
        text += Check(column, noteRequired, filled);
    return text;
}

QString CreateTableText(const TableInfo& table, const QString& name) {
    QStringList parts;
    for (int column = 0; column < static_cast<int>(table.columns.size()); ++column)
        parts += ColumnText(table, column);
    const int rowNumber = table.RowNumberColumn();
    const bool isRowNumber = table.IsKey(rowNumber);
    const IndexInfo* key = table.PrimaryKey();
    if (key && (!isRowNumber || IsNamedKey(table, rowNumber))) {
        // SQLite takes one primary key, and a counter is it.
        const bool besideCounter = !isRowNumber && rowNumber >= 0;
        const bool counts = isRowNumber && table.CounterColumn() >= 0;
        parts += u"CONSTRAINT %1 %2 (%3%4)"_s.arg(
            QuoteName(besideCounter ? primaryKeyMark.toString() + key->name : key->name),
            besideCounter ? u"UNIQUE"_s : u"PRIMARY KEY"_s, QuoteNames(key->columns),
            counts ? u" AUTOINCREMENT"_s : QString());
    }
    return u"CREATE TABLE %1 (%2) STRICT"_s.arg(QuoteName(name), parts.join(QLatin1String(", ")));
}

QString CreateIndexText(const TableInfo& table, const IndexInfo& index) {
    return u"CREATE %1INDEX %2 ON %3 (%4)"_s.arg(index.unique ? u"UNIQUE "_s : QString(),
                                                 QuoteName(FileIndexName(table.name, index.name)),
                                                 QuoteName(table.name), QuoteNames(index.columns));
}

TableInfo ReadTable(const Sqlite& db, const QString& name, const QString& text) {
    const Declarations declarations(text);
    TableInfo table{.name = name};
    const QStringList key = ReadColumns(db, table, text, declarations);
    IndexInfo primary{declarations.KeyName(key), key, true, true};
    if (primary.name.isEmpty() || primary.name.startsWith(primaryKeyMark))
        primary.name = namelessKey.toString();
    // The counter is SQLite's key; where the table has another, that is a marked UNIQUE constraint.
    if (const int counter = table.CounterColumn(); counter >= 0 && declarations.IsNotKey(table.At(counter)))
        primary.columns.clear();
    for (auto& [index, constraint] : ListIndexes(db, name)) {
        const QString declared = constraint ? declarations.KeyName(index.columns) : QString();
        const int column = index.columns.size() == 1 ? table.Find(index.columns.front()) : -1;
        if (declared.startsWith(primaryKeyMark)) {
            primary = {declared.mid(primaryKeyMark.size()), index.columns, true, true};
        } else if (constraint && column >= 0) {
            table.At(column).unique = true;
        } else {
            const QString prefix = FileIndexName(name, {});
            if (!declared.isEmpty())
                index.name = declared;
            else if (index.name.startsWith(prefix))
                index.name.remove(0, prefix.size());
            table.indexes.push_back(std::move(index));
        }
    }
    if (!primary.columns.isEmpty())
        table.indexes.insert(table.indexes.begin(), std::move(primary));
    return table;
}

} // namespace engine
