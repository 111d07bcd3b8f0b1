#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/Parser.h"

#include <algorithm>

namespace engine::sql {

namespace {

void CheckName(const QString& name, int number) {
    if (!IsValidName(name))
        RaiseEngine(number);
}

} // namespace

QStringList Parser::ParseColumnNames(int number) {
    QStringList names;
    ExpectSign(u'(', number);
    do {
        names.push_back(ExpectName(number));
    } while (TakeSign(u','));
    ExpectSign(u')', number);
    return names;
}

void Parser::ParseCreate(SchemaChange& change) {
    Take();
    const bool unique = TakeWord("UNIQUE");
    if (TakeWord("INDEX")) {
        ParseCreateIndex(change, unique);
        return;
    }
    if (unique)
        RaiseEngine(SyntaxInCreateIndex);
    ExpectWord("TABLE", SyntaxInCreateTable);
    ParseCreateTable(change);
}

void Parser::ParseCreateTable(SchemaChange& change) {
    change.kind = SchemaChange::CreateTable;
    change.table.name = ExpectName(SyntaxInCreateTable);
    CheckName(change.table.name, SyntaxInCreateTable);
    ExpectSign(u'(', SyntaxInCreateTable);
    do {
        if (TakeWord("CONSTRAINT")) {
            change.table.indexes.push_back(ParseTableConstraint(change.table));
            continue;
        }
        ColumnInfo column = ParseColumn(change.table, SyntaxInCreateTable);
        if (change.table.Find(column.name) >= 0)
            RaiseEngine(ColumnDefinedTwice);
        change.table.columns.push_back(std::move(column));
    } while (TakeSign(u','));
    ExpectSign(u')', SyntaxInCreateTable);
    ExpectStatementEnd(SyntaxInCreateTable);
    if (change.table.columns.empty())
        RaiseEngine(SyntaxInCreateTable);
}

/// A column with its type and constraints; its keys join the indexes of `table`.
ColumnInfo Parser::ParseColumn(TableInfo& table, int number) {
    ColumnInfo column;
    column.name = ExpectName(number);
    CheckName(column.name, SyntaxInColumnDefinition);
    ParseColumnType(column);
    bool nullTold = false;
    for (;;) {
        const bool negated = AtWord("NOT");
        if (negated || AtWord("NULL")) {
            if (negated)
                Take();
            if (nullTold || !TakeWord("NULL"))
                RaiseEngine(SyntaxInColumnDefinition);
            nullTold = true;
            column.required = negated;
            continue;
        }
        QString name;
        if (TakeWord("CONSTRAINT"))
            name = ParseConstraintName();
        else if (!AtWord("PRIMARY") && !AtWord("UNIQUE"))
            break;
        ParseColumnConstraint(column, table, name);
    }
    if (!Peek().Is(u',') && !Peek().Is(u')') && !AtEnd())
        RaiseEngine(number);
    return column;
}

void Parser::ParseColumnType(ColumnInfo& column) {
    const Token type = Take();
    const auto named = type.kind == TokenKind::Word ? TypeOfWord(type.text) : std::nullopt;
    if (!named)
        RaiseEngine(SyntaxInColumnDefinition);
    column.type = *named;
    const bool sized =
        column.type == DataType::Text || (column.type == DataType::Binary && !type.IsWord("LONGBINARY"));
    if (column.type == DataType::Text)
        column.size = longestText;
    if (!sized || !TakeSign(u'('))
        return;
    const Token size = Take();
    if (size.kind != TokenKind::Integer)
        RaiseEngine(SyntaxInColumnDefinition);
    const Value value = Lexer::LiteralValue(size);
    ExpectSign(u')', SyntaxInColumnDefinition);
    if (value.Long() < 1)
        RaiseEngine(SyntaxInColumnDefinition);
    if (value.Long() > (column.type == DataType::Text ? longestText : longestBinary))
        RaiseEngine(ColumnTooWide, column.name);
    column.size = value.Long();
}

void Parser::ParseColumnConstraint(ColumnInfo& column, TableInfo& table, const QString& name) {
    IndexInfo index;
    index.name = name;
    index.columns = {column.name};
    index.unique = true;
    if (TakeWord("PRIMARY")) {
        ExpectWord("KEY", SyntaxInConstraint);
        index.primary = true;
        if (std::ranges::any_of(table.indexes, &IndexInfo::primary))
            RaiseEngine(PrimaryKeyExists);
    } else {
        ExpectWord("UNIQUE", SyntaxInConstraint);
        if (name.isEmpty()) {
            column.unique = true;
            return;
        }
    }
    table.indexes.push_back(std::move(index));
}

QString Parser::ParseConstraintName() {
    QString name = ExpectName(SyntaxInConstraint);
    CheckName(name, SyntaxInConstraint);
    return name;
}

/// Behind CONSTRAINT: `name PRIMARY KEY (columns)` or `name UNIQUE (columns)`. There are no foreign keys.
IndexInfo Parser::ParseTableConstraint(TableInfo& table) {
    IndexInfo index;
    index.name = ParseConstraintName();
    index.unique = true;
    index.primary = TakeWord("PRIMARY");
    if (index.primary)
        ExpectWord("KEY", SyntaxInConstraint);
    else
        ExpectWord("UNIQUE", SyntaxInConstraint);
    if (index.primary && std::ranges::any_of(table.indexes, &IndexInfo::primary))
        RaiseEngine(PrimaryKeyExists);
    index.columns = ParseColumnNames(SyntaxInConstraint);
    return index;
}

void Parser::ParseCreateIndex(SchemaChange& change, bool unique) {
    change.kind = SchemaChange::CreateIndex;
    IndexInfo& index = change.index;
    index.unique = unique;
    index.name = ExpectName(SyntaxInCreateIndex);
    CheckName(index.name, SyntaxInCreateIndex);
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
        if (TakeWord("PRIMARY")) {
            index.primary = index.unique = true;
        } else if (TakeWord("DISALLOW")) {
            index.disallowNull = true;
            ExpectWord("NULL", SyntaxInCreateIndex);
        } else if (TakeWord("IGNORE")) {
            ExpectWord("NULL", SyntaxInCreateIndex);
        } else {
            RaiseEngine(SyntaxInCreateIndex);
        }
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
        if (change.column.unique || !change.table.indexes.empty())
            RaiseEngine(SyntaxInAlterTable);
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
    // The key of a table joins it by ADD CONSTRAINT.
    if (std::ranges::any_of(change.table.indexes, &IndexInfo::primary))
        RaiseEngine(SyntaxInAlterTable);
    if (change.table.indexes.size() > 1)
        RaiseEngine(SyntaxInAlterTable);
    if (!change.table.indexes.empty())
        change.index = std::move(change.table.indexes.front());
    change.table.indexes.clear();
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
