#include "platform/engine/schema/Layout.h"

#include "platform/engine/schema/Names.h"
#include "platform/engine/store/SqliteFailure.h"

#include <algorithm>
#include <array>

namespace engine {

namespace {

struct TypeEntry {
    DataType type;
    const char16_t* word; ///< in the name of the constraint; %1 is the size
    const char16_t* sqlite;
    const char16_t* check; ///< %c is the column, %1 the size
};

// Sizes are counted in UTF-16 units, two bytes each in the file's own text form.
constexpr auto types = std::to_array<TypeEntry>({
    {DataType::Counter, u"COUNTER", u"INTEGER", u"%c BETWEEN -2147483648 AND 2147483647"},
    {DataType::Long, u"LONG", u"INTEGER", u"%c BETWEEN -2147483648 AND 2147483647"},
    {DataType::Short, u"SHORT", u"INTEGER", u"%c BETWEEN -32768 AND 32767"},
    {DataType::Byte, u"BYTE", u"INTEGER", u"%c BETWEEN 0 AND 255"},
    {DataType::Bit, u"BIT", u"INTEGER", u"%c BETWEEN 0 AND 1"},
    {DataType::Single, u"SINGLE", u"REAL", u"%c BETWEEN -3.4028235677973366e38 AND 3.4028235677973366e38"},
    {DataType::Double, u"DOUBLE", u"REAL", u"%c BETWEEN -1.7976931348623157e308 AND 1.7976931348623157e308"},
    {DataType::Currency, u"CURRENCY", u"REAL", u"%c BETWEEN -922337203685477.5808 AND 922337203685477.5807"},
    {DataType::Date, u"DATETIME", u"REAL", u"%c > -657435.0 AND %c < 2958466.0"},
    {DataType::Text, u"TEXT(%1)", u"TEXT", u"length(CAST(%c AS BLOB)) <= 2 * %1"},
    {DataType::Memo, u"LONGTEXT", u"TEXT", u"length(CAST(%c AS BLOB)) <= 2147483646"},
    {DataType::Binary, u"BINARY(%1)", u"BLOB", u"length(%c) <= %1"},
    {DataType::Binary, u"LONGBINARY", u"BLOB", u"length(%c) <= 2147483646"},
    {DataType::Guid, u"GUID", u"TEXT", u"length(CAST(%c AS BLOB)) <= 76"},
    {DataType::Currency, u"MONEY", u"INTEGER", u"%c BETWEEN -9223372036854775808 AND 9223372036854775807"},
});

// CURRENCY as the program kept it first.
constexpr auto keptAsFraction = std::ranges::find(types, DataType::Currency, &TypeEntry::type);
constexpr int digitsOfFraction = 15;

const TypeEntry& EntryOf(const ColumnInfo& column) {
    const auto fits = [&](const TypeEntry& entry) {
        const bool sized = QStringView(entry.word).endsWith(u')');
        const bool fraction = QStringView(entry.sqlite) == u"REAL";
        return entry.type == column.type && (column.type != DataType::Binary || sized == (column.size > 0)) &&
               (column.type != DataType::Currency || fraction == (column.size > 0));
    };
    const auto found = std::ranges::find_if(types, fits);
    return found == types.end() ? types[10] : *found; // what has no form of its own is kept as text
}

bool IsText(const ColumnInfo& column) {
    return column.type == DataType::Text || column.type == DataType::Memo;
}

QString Check(const QString& column, QStringView declaration, const QString& condition) {
    return QStringLiteral(" CONSTRAINT %1 CHECK (%2)")
        .arg(QuoteName(column + u' ' + declaration.toString()), condition);
}

QString QuoteList(const QStringList& names) {
    QStringList quoted;
    for (const QString& name : names)
        quoted += QuoteName(name);
    return quoted.join(QLatin1String(", "));
}

bool IsOnly(const IndexInfo& key, const ColumnInfo& column) {
    return key.columns.size() == 1 && key.columns.front().compare(column.name, Qt::CaseInsensitive) == 0;
}

/// A row number that is the key under a name, which only a constraint of the table can hold.
bool IsNamedRowNumber(const TableInfo& table) {
    const IndexInfo* key = table.PrimaryKey();
    const int rowNumber = table.RowNumberColumn();
    return key != nullptr && rowNumber >= 0 && !key->name.isEmpty() && key->name != namelessKey &&
           IsOnly(*key, table.columns[static_cast<std::size_t>(rowNumber)]);
}

// ---- reading ----

struct Token {
    enum Kind { End, Word, Name, Sign } kind = End;
    QString text;
};

class Reader {
public:
    explicit Reader(QStringView text)
        : m_text(text) {}

    Token Next() {
        while (m_at < m_text.size() && m_text[m_at].isSpace())
            ++m_at;
        if (m_at >= m_text.size())
            return {};
        const QChar first = m_text[m_at];
        if (first == u'"' || first == u'`' || first == u'\'')
            return Quoted(first, first == u'\'' ? Token::Sign : Token::Name);
        if (first == u'[')
            return Quoted(u']', Token::Name);
        if (first.isLetterOrNumber() || first == u'_') {
            const qsizetype start = m_at;
            while (m_at < m_text.size() && (m_text[m_at].isLetterOrNumber() || m_text[m_at] == u'_'))
                ++m_at;
            return {Token::Word, m_text.sliced(start, m_at - start).toString()};
        }
        ++m_at;
        return {Token::Sign, QString(first)};
    }

private:
    Token Quoted(QChar close, Token::Kind kind) {
        QString name;
        for (++m_at; m_at < m_text.size(); ++m_at) {
            if (m_text[m_at] == close) {
                if (m_at + 1 >= m_text.size() || m_text[m_at + 1] != close || close == u']')
                    break;
                ++m_at;
            }
            name += m_text[m_at];
        }
        ++m_at;
        return {kind, name};
    }

    QStringView m_text;
    qsizetype m_at = 0;
};

bool IsWord(const Token& token, QLatin1String word) {
    return token.kind == Token::Word && token.text.compare(word, Qt::CaseInsensitive) == 0;
}

bool IsSign(const Token& token, char16_t sign) {
    return token.kind == Token::Sign && token.text.size() == 1 && token.text.front() == sign;
}

bool IsNameLike(const Token& token) {
    return token.kind == Token::Word || token.kind == Token::Name;
}

} // namespace

Layout::Layout(TableInfo table)
    : info(std::move(table))
    , requiredLater(info.columns.size(), false) {
}

QString ColumnText(const Layout& layout, int place) {
    const auto at = static_cast<std::size_t>(place);
    const ColumnInfo& column = layout.info.columns[at];
    const TypeEntry& entry = EntryOf(column);
    const QString name = QuoteName(column.name);
    QString text = name + u' ' + QStringView(entry.sqlite).toString();
    const bool requiredLater = at < layout.requiredLater.size() && layout.requiredLater[at];
    if (column.required && !requiredLater)
        text += QLatin1String(" NOT NULL");
    if (place == layout.info.RowNumberColumn() && !IsNamedRowNumber(layout.info)) {
        text += QLatin1String(" PRIMARY KEY");
        if (column.type == DataType::Counter)
            text += QLatin1String(" AUTOINCREMENT");
    }
    if (column.type == DataType::Bit)
        text += QLatin1String(" DEFAULT 0");
    if (IsText(column))
        text += QLatin1String(" COLLATE ZV_FOLD");
    const IndexInfo* key = layout.info.PrimaryKey();
    if (column.unique && !(key != nullptr && IsOnly(*key, column)))
        text += QLatin1String(" UNIQUE");

    const QString size = QString::number(column.size);
    const auto sized = [&](const char16_t* pattern) {
        return QString(QStringView(pattern).toString()).replace(QLatin1String("%1"), size);
    };
    text += Check(column.name, sized(entry.word), sized(entry.check).replace(QLatin1String("%c"), name));
    if (IsText(column) && !column.allowZeroLength)
        text += Check(column.name, noteNoEmptyText, QStringLiteral("length(CAST(%1 AS BLOB)) > 0").arg(name));
    if (column.type == DataType::Counter && !(key != nullptr && IsOnly(*key, column)))
        text += Check(column.name, noteNotKey, name + QStringLiteral(" IS NOT NULL"));
    if (column.required && requiredLater)
        text += Check(column.name, noteRequired, name + QStringLiteral(" IS NOT NULL"));
    return text;
}

QString CreateTableText(const Layout& layout, const QString& name) {
    QStringList parts;
    for (int column = 0; column < static_cast<int>(layout.info.columns.size()); ++column)
        parts += ColumnText(layout, column);
    const int rowNumber = layout.info.RowNumberColumn();
    for (const IndexInfo& index : layout.info.indexes) {
        const bool isRowNumber = index.primary && rowNumber >= 0 &&
                                 IsOnly(index, layout.info.columns[static_cast<std::size_t>(rowNumber)]);
        if (!index.primary || (isRowNumber && !IsNamedRowNumber(layout.info)))
            continue;
        // SQLite takes one primary key, and a counter is it.
        const bool besideCounter = rowNumber >= 0 && !isRowNumber;
        const bool counts = isRowNumber && layout.info.CounterColumn() >= 0;
        parts += QStringLiteral("CONSTRAINT %1 %2 (%3%4)")
                     .arg(QuoteName(besideCounter ? primaryKeyMark.toString() + index.name : index.name),
                          besideCounter ? QStringLiteral("UNIQUE") : QStringLiteral("PRIMARY KEY"),
                          QuoteList(index.columns), counts ? QStringLiteral(" AUTOINCREMENT") : QString());
    }
    return QStringLiteral("CREATE TABLE %1 (%2) STRICT")
        .arg(QuoteName(name), parts.join(QLatin1String(", ")));
}

QString FileIndexName(const QString& table, const QString& index) {
    return table + u'.' + index; // no name of the dialect holds a point
}

QString CreateIndexText(const TableInfo& table, const IndexInfo& index) {
    return QStringLiteral("CREATE %1INDEX %2 ON %3 (%4)")
        .arg(index.unique ? QStringLiteral("UNIQUE ") : QString(),
             QuoteName(FileIndexName(table.name, index.name)), QuoteName(table.name),
             QuoteList(index.columns));
}

Declarations ReadDeclarations(QStringView createTable) {
    Declarations found;
    Reader reader(createTable);
    for (Token token = reader.Next(); token.kind != Token::End; token = reader.Next()) {
        if (!IsWord(token, QLatin1String("CONSTRAINT")))
            continue;
        const Token name = reader.Next();
        if (!IsNameLike(name))
            continue;
        token = reader.Next();
        if (IsWord(token, QLatin1String("CHECK"))) {
            found.checks += name.text;
            continue;
        }
        const bool key = IsWord(token, QLatin1String("UNIQUE")) || IsWord(token, QLatin1String("PRIMARY"));
        if (!key)
            continue;
        if (IsWord(token, QLatin1String("PRIMARY")))
            reader.Next(); // KEY
        if (!IsSign(reader.Next(), u'('))
            continue;
        Declarations::Key entry{name.text, {}};
        for (token = reader.Next(); token.kind != Token::End && !IsSign(token, u')'); token = reader.Next())
            if (IsNameLike(token) && !IsWord(token, QLatin1String("AUTOINCREMENT")))
                entry.columns += token.text;
        found.keys.push_back(std::move(entry));
    }
    return found;
}

bool ApplyDeclarations(ColumnInfo& column, const QStringList& checks, bool& requiredLater) {
    const QString prefix = column.name + u' ';
    bool typed = false;
    column.allowZeroLength = true;
    for (const QString& check : checks) {
        if (!check.startsWith(prefix))
            continue;
        QString declaration = check.mid(prefix.size());
        if (declaration == noteNoEmptyText) {
            column.allowZeroLength = false;
            continue;
        }
        if (declaration == noteRequired) {
            column.required = true;
            requiredLater = true;
            continue;
        }
        int size = 0;
        if (const qsizetype open = declaration.indexOf(u'('); open >= 0 && declaration.endsWith(u')')) {
            size = declaration.mid(open + 1).chopped(1).toInt();
            declaration = declaration.left(open) + QLatin1String("(%1)");
        }
        const auto entry = std::ranges::find_if(
            types, [&](const TypeEntry& candidate) { return declaration == QStringView(candidate.word); });
        if (entry == types.end() || size < 0)
            continue;
        column.type = entry->type;
        column.size = entry == keptAsFraction ? digitsOfFraction : size;
        typed = true;
    }
    if (!IsText(column))
        column.allowZeroLength = false;
    return typed;
}

} // namespace engine
