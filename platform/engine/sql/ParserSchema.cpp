#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/Parser.h"

#include <algorithm>

namespace engine::sql {

QString Parser::ParseNewName(const EngineError& error, const EngineError& invalid) {
    QString name = ExpectName(error);
    Expect(IsValidName(name), invalid);
    return name;
}

QStringList Parser::ParseColumnNames(const EngineError& error) {
    QStringList names;
    ExpectSign(u'(', error);
    do {
        names.push_back(ExpectName(error));
    } while (TakeSign(u','));
    ExpectSign(u')', error);
    return names;
}

void Parser::ParseCreate(SchemaChange& change) {
    Take();
    const bool unique = TakeWord("UNIQUE");
    if (TakeWord("INDEX")) {
        ParseCreateIndex(change, unique);
        return;
    }
    Expect(!unique, SyntaxInCreateIndex);
    ExpectWord("TABLE", SyntaxInCreateTable);
    ParseCreateTable(change);
}

void Parser::ParseCreateTable(SchemaChange& change) {
    change.kind = SchemaChange::CreateTable;
    change.table.name = ParseNewName(SyntaxInCreateTable, SyntaxInCreateTable);
    ExpectSign(u'(', SyntaxInCreateTable);
    do {
        if (TakeWord("CONSTRAINT")) {
            change.table.indexes.push_back(ParseTableConstraint(change.table));
            continue;
        }
        ColumnInfo column = ParseColumn(change.table, SyntaxInCreateTable);
        Expect(change.table.Find(column.name) < 0, ColumnDefinedTwice);
        change.table.columns.push_back(std::move(column));
    } while (TakeSign(u','));
    ExpectSign(u')', SyntaxInCreateTable);
    ExpectStatementEnd(SyntaxInCreateTable);
    Expect(!change.table.columns.empty(), SyntaxInCreateTable);
}

/// A column with its type and constraints; its keys join the indexes of `table`.
ColumnInfo Parser::ParseColumn(TableInfo& table, const EngineError& error) {
    ColumnInfo column;
    column.name = ParseNewName(error, SyntaxInColumnDefinition);
    ParseColumnType(column);
    bool nullTold = false;
    for (;;) {
        const bool negated = AtWord("NOT");
        if (negated || AtWord("NULL")) {
            if (negated)
                Take();
            Expect(!nullTold && TakeWord("NULL"), SyntaxInColumnDefinition);
            nullTold = true;
            column.required = negated;
            continue;
        }
        if (!AtWord("CONSTRAINT") && !AtWord("PRIMARY") && !AtWord("UNIQUE"))
            break;
        ParseColumnConstraint(column, table);
    }
    Expect(Peek().Is(u',') || Peek().Is(u')') || AtEnd(), error);
    return column;
}

void Parser::ParseColumnType(ColumnInfo& column) {
    const Token type = Take();
    const auto named = type.kind == TokenKind::Word ? TypeOfWord(type.text) : std::nullopt;
    Expect(named.has_value(), SyntaxInColumnDefinition);
    column.type = *named;
    const bool sized =
        column.type == DataType::Text || (column.type == DataType::Binary && !type.IsWord("LONGBINARY"));
    if (column.type == DataType::Text)
        column.size = longestText;
    if (!sized || !TakeSign(u'('))
        return;
    const Token size = Take();
    Expect(size.kind == TokenKind::Integer, SyntaxInColumnDefinition);
    const Value value = Lexer::LiteralValue(size);
    ExpectSign(u')', SyntaxInColumnDefinition);
    Expect(value.Long() >= 1, SyntaxInColumnDefinition);
    if (value.Long() > (column.type == DataType::Text ? longestText : longestBinary))
        RaiseEngine(ColumnTooWide, column.name);
    column.size = value.Long();
}

void Parser::ParseColumnConstraint(ColumnInfo& column, TableInfo& table) {
    const bool named = TakeWord("CONSTRAINT");
    const QString name = named ? ParseNewName(SyntaxInConstraint, SyntaxInConstraint) : QString();
    IndexInfo key = ParseKey(table);
    key.name = name;
    key.columns = {column.name};
    if (named || key.primary)
        table.indexes.push_back(std::move(key));
    else
        column.unique = true;
}

/// Behind CONSTRAINT: `name PRIMARY KEY (columns)` or `name UNIQUE (columns)`. There are no foreign keys.
IndexInfo Parser::ParseTableConstraint(const TableInfo& table) {
    const QString name = ParseNewName(SyntaxInConstraint, SyntaxInConstraint);
    IndexInfo key = ParseKey(table);
    key.name = name;
    key.columns = ParseColumnNames(SyntaxInConstraint);
    return key;
}

/// PRIMARY KEY, the only one of its table, or UNIQUE.
IndexInfo Parser::ParseKey(const TableInfo& table) {
    IndexInfo key;
    key.unique = true;
    key.primary = TakeWord("PRIMARY");
    ExpectWord(key.primary ? "KEY" : "UNIQUE", SyntaxInConstraint);
    Expect(!key.primary || !table.PrimaryKey(), PrimaryKeyExists);
    return key;
}

void Parser::ParseCreateIndex(SchemaChange& change, bool unique) {
    change.kind = SchemaChange::CreateIndex;
    IndexInfo& index = change.index;
    index.unique = unique;
    index.name = ParseNewName(SyntaxInCreateIndex, SyntaxInCreateIndex);
    ExpectWord("ON", SyntaxInCreateIndex);
    change.table.name = ExpectName(SyntaxInCreateIndex);
    ExpectSign(u'(', SyntaxInCreateIndex);
    do {
        index.columns.push_back(ExpectName(SyntaxInCreateIndex));
        if (!TakeWord("DESC"))
            TakeWord("ASC");
    } while (TakeSign(u','));
    ExpectSign(u')', SyntaxInCreateIndex);
    if (TakeWord("WITH")) {
        index.primary = TakeWord("PRIMARY");
        index.unique = index.unique || index.primary;
        index.disallowNull = !index.primary && TakeWord("DISALLOW");
        if (!index.primary && !index.disallowNull)
            ExpectWord("IGNORE", SyntaxInCreateIndex);
        if (!index.primary)
            ExpectWord("NULL", SyntaxInCreateIndex);
    }
    ExpectStatementEnd(SyntaxInCreateIndex);
}

void Parser::ParseAlter(SchemaChange& change) {
    Take();
    ExpectWord("TABLE", SyntaxInAlterTable);
    change.table.name = ExpectName(SyntaxInAlterTable);
    if (TakeWord("ADD")) {
        ParseAlterAdd(change);
    } else if (TakeWord("ALTER")) {
        TakeWord("COLUMN");
        change.kind = SchemaChange::AlterColumn;
        change.column = ParseColumn(change.table, SyntaxInAlterTable);
        Expect(!change.column.unique && change.table.indexes.empty(), SyntaxInAlterTable);
    } else if (TakeWord("DROP")) {
        if (TakeWord("CONSTRAINT")) {
            change.kind = SchemaChange::DropIndex;
            change.index.name = ExpectName(SyntaxInAlterTable);
        } else {
            TakeWord("COLUMN");
            change.kind = SchemaChange::DropColumn;
            change.column.name = ExpectName(SyntaxInAlterTable);
        }
    } else {
        RaiseEngine(SyntaxInAlterTable);
    }
    ExpectStatementEnd(SyntaxInAlterTable);
}

void Parser::ParseAlterAdd(SchemaChange& change) {
    if (TakeWord("CONSTRAINT")) {
        change.kind = SchemaChange::CreateIndex;
        change.index = ParseTableConstraint(change.table);
        return;
    }
    TakeWord("COLUMN");
    change.kind = SchemaChange::AddColumn;
    change.column = ParseColumn(change.table, SyntaxInAlterTable);
    auto& keys = change.table.indexes;
    // The key of a table joins it by ADD CONSTRAINT.
    Expect(!change.table.PrimaryKey() && keys.size() <= 1, SyntaxInAlterTable);
    if (!keys.empty())
        change.index = std::move(keys.front());
    keys.clear();
}

void Parser::ParseDrop(SchemaChange& change) {
    Take();
    if (TakeWord("TABLE")) {
        change.kind = SchemaChange::DropTable;
        change.table.name = ExpectName(SyntaxInDrop);
    } else {
        ExpectWord("INDEX", SyntaxInDrop);
        change.kind = SchemaChange::DropIndex;
        change.index.name = ExpectName(SyntaxInDrop);
        ExpectWord("ON", SyntaxInDrop);
        change.table.name = ExpectName(SyntaxInDrop);
    }
    ExpectStatementEnd(SyntaxInDrop);
}

} // namespace engine::sql
