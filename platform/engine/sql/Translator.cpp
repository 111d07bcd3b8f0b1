#include "platform/engine/EngineError.h"
#include "platform/engine/sql/ActionWriter.h"
#include "platform/engine/sql/Keys.h"
#include "platform/engine/sql/Parser.h"
#include "platform/engine/sql/QueryWriter.h"

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

/// `SELECT * FROM table`, as which the name of a table alone opens.
Query WholeTable(const QString& table) {
    auto select = std::make_unique<Select>();
    select->items.emplace_back();
    select->from.push_back(std::make_unique<Source>());
    select->from.front()->table = table;
    Query query;
    query.parts.emplace_back();
    query.parts.front().select = std::move(select);
    return query;
}

void WriteSelect(Context& context, const Query& query, Plan& plan) {
    QueryWriter writer(context, nullptr);
    std::vector<WrittenColumn> columns;
    if (query.parts.size() > 1 || query.parts.front().query) {
        WrittenQuery written = writer.Write(query);
        plan.text = written.text;
        columns = std::move(written.columns);
    } else {
        Scope scope;
        SelectParts parts = writer.WriteParts(*query.parts.front().select, query.orderBy, scope);
        context.RaiseMistakes();
        const QString rowNumber = parts.IsPlain() ? parts.table->RowId() : QString();
        plan.text = parts.Assemble(rowNumber);
        const int parameter = context.ParameterCount() + 1;
        if (parts.table && FindKeys(query.parts.front().select->where.get(), scope, plan)) {
            const QString where = parts.where.At(AndPrecedence) + u" AND "_s;
            const auto keyed = [&](Rows rows) {
                parts.where = MakeCondition(where + KeyText(*parts.table, parameter, rows), AndPrecedence);
                return parts.Assemble(rowNumber);
            };
            plan.keyedText = keyed(Rows::Listed);
            plan.keyedRowText = keyed(Rows::One);
        }
        if (parts.IsPlain()) {
            plan.rowTable = parts.table->table->name;
            parts.where = MakeCondition(KeyText(*parts.table, parameter, Rows::One), EqualPrecedence);
            parts.orderBy.clear();
            plan.rowText = parts.Assemble();
        }
        columns = std::move(parts.columns);
    }
    for (const WrittenColumn& column : columns)
        plan.columns.push_back({column.name, column.value.type});
}

void WriteQuery(Context& context, const Statement& statement, Purpose purpose,
                const std::vector<Heading>* headings, Plan& plan) {
    const bool executes = purpose == Purpose::Execute;
    if (statement.kind == Statement::TableKind) {
        if (executes || !context.FindTable(statement.table))
            RaiseEngine(UnknownTable, statement.table);
        WriteSelect(context, WholeTable(statement.table), plan);
        return;
    }
    const Query& query = *statement.query;
    const auto& first = query.parts.front();
    if (statement.transform)
        WriteTransform(context, *statement.transform, query, headings, plan);
    else if (query.parts.size() == 1 && first.select && !first.select->into.isEmpty())
        WriteInto(context, query, plan);
    else
        WriteSelect(context, query, plan);
    if (executes && plan.verb == Verb::Select) {
        context.RaiseMistakes();
        RaiseEngine(CannotExecuteSelect);
    }
}

} // namespace

Plan Translate(const Scanned& scanned, const Catalog& catalog, Purpose purpose,
               const std::vector<Heading>* headings) {
    const Statement statement = Parser(scanned.text, scanned.cacheable).ParseStatement();
    Context context(scanned, catalog);
    Plan plan;
    switch (statement.kind) {
    case Statement::QueryKind:
    case Statement::TableKind:
        WriteQuery(context, statement, purpose, headings, plan);
        break;
    case Statement::SchemaKind:
        plan.verb = Verb::Schema;
        plan.change = statement.schema;
        plan.target = statement.schema.table.name;
        Changed(plan.change, catalog);
        break;
    case Statement::InsertKind:
        WriteInsert(context, statement.insert, plan);
        break;
    case Statement::UpdateKind:
        WriteUpdate(context, statement.update, plan);
        break;
    case Statement::DeleteKind:
        WriteDelete(context, statement.remove, plan);
        break;
    }
    context.RaiseMistakes();
    plan.parameters = context.Parameters();
    if (purpose == Purpose::OpenRecordset && plan.verb != Verb::Select)
        RaiseEngine(InvalidOperation);
    return plan;
}

} // namespace engine::sql
