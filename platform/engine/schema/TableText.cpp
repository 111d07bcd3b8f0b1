#include "platform/engine/schema/TableText.h"

#include "platform/engine/schema/Names.h"
#include "platform/engine/store/SqliteFailure.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

/// The counter of a table whose key it is not carries this note.
constexpr QStringView noteNotKey = u"NotKey";

QString CheckName(const ColumnInfo& column, QStringView declaration) {
    return column.name + u' ' + declaration.toString();
}

QString Check(const ColumnInfo& column, QStringView declaration, const QString& condition) {
    return u" CONSTRAINT %1 CHECK (%2)"_s.arg(QuoteName(CheckName(column, declaration)), condition);
}

/// Whether the row number is the key under a name, which only a constraint of the table can hold.
bool IsNamedKey(const TableInfo& table, int rowNumber) {
    const QString name = table.IsKey(rowNumber) ? table.PrimaryKey()->name : QString();
    return !name.isEmpty() && name != namelessKey;
}

/// The words, signs and names of a text; names in their quotes.
QStringList Tokens(const QString& text) {
    static const QRegularExpression pattern(
        uR"("[^"]*+(?:""[^"]*+)*+"|`[^`]*+(?:``[^`]*+)*+`|\[[^]]*+]|'[^']*+'|\w++|\S)"_s,
        QRegularExpression::UseUnicodePropertiesOption);
    QStringList tokens;
    for (auto found = pattern.globalMatch(text); found.hasNext();)
        tokens += found.next().captured();
    return tokens;
}

QString Unquoted(const QString& token) {
    const QChar quote = token.isEmpty() ? QChar() : token.front();
    if (quote == u'[')
        return token.mid(1, token.size() - 2);
    return quote == u'"' || quote == u'`' ? token.mid(1, token.size() - 2).replace(QString(2, quote), quote)
                                          : token;
}

bool IsWord(const QString& token, QLatin1String word) {
    return token.compare(word, Qt::CaseInsensitive) == 0;
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
    if (key && isRowNumber && IsNamedKey(table, rowNumber)) {
        const bool counts = table.CounterColumn() >= 0;
        parts += u"CONSTRAINT %1 PRIMARY KEY (%2%3)"_s.arg(QuoteName(key->name), QuoteNames(key->columns),
                                                           counts ? u" AUTOINCREMENT"_s : QString());
    } else if (key && !isRowNumber) {
        // SQLite takes one primary key, and a counter is it.
        const bool besideCounter = rowNumber >= 0;
        parts += u"CONSTRAINT %1 %2 (%3)"_s.arg(
            QuoteName(besideCounter ? primaryKeyMark.toString() + key->name : key->name),
            besideCounter ? u"UNIQUE"_s : u"PRIMARY KEY"_s, QuoteNames(key->columns));
    }
    return u"CREATE TABLE %1 (%2) STRICT"_s.arg(QuoteName(name), parts.join(QLatin1String(", ")));
}

QString FileIndexName(const QString& table, const QString& index) {
    return table + u'.' + index; // no name of the dialect holds a point
}

QString CreateIndexText(const TableInfo& table, const IndexInfo& index) {
    return u"CREATE %1INDEX %2 ON %3 (%4)"_s.arg(index.unique ? u"UNIQUE "_s : QString(),
                                                 QuoteName(FileIndexName(table.name, index.name)),
                                                 QuoteName(table.name), QuoteNames(index.columns));
}

Declarations::Declarations(const QString& createTable) {
    const QStringList tokens = Tokens(createTable);
    for (qsizetype at = 0; at < tokens.size(); ++at) {
        if (!IsWord(tokens[at], QLatin1String("CONSTRAINT")))
            continue;
        const QString name = Unquoted(tokens.value(at + 1));
        const QString kind = tokens.value(at + 2);
        const bool primary = IsWord(kind, QLatin1String("PRIMARY")); // and KEY
        if (IsWord(kind, QLatin1String("CHECK")))
            m_checks += name;
        qsizetype place = at + (primary ? 4 : 3);
        if ((!primary && !IsWord(kind, QLatin1String("UNIQUE"))) || tokens.value(place) != u'(')
            continue;
        Key key{name, {}};
        while (++place < tokens.size() && tokens[place] != u')')
            if (tokens[place] != u',' && !IsWord(tokens[place], QLatin1String("AUTOINCREMENT")))
                key.columns += Unquoted(tokens[place]);
        m_keys.push_back(std::move(key));
    }
}

void Declarations::Apply(ColumnInfo& column) const {
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

QString Declarations::KeyName(const QStringList& columns) const {
    const auto key = std::ranges::find_if(m_keys, [&](const Key& candidate) {
        return std::ranges::equal(candidate.columns, columns, SameName);
    });
    return key == m_keys.end() ? QString() : key->name;
}

bool Declarations::IsNotKey(const ColumnInfo& counter) const {
    return m_checks.contains(CheckName(counter, noteNotKey));
}

} // namespace engine
