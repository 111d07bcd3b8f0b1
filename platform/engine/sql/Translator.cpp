#include "platform/engine/EngineError.h"
#include "platform/engine/sql/Binder.h"
#include "platform/engine/sql/Keys.h"
#include "platform/engine/sql/Parser.h"
#include "platform/engine/sql/Writer.h"

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

void AddColumns(const std::vector<BoundColumn>& columns, Plan& plan) {
    for (const BoundColumn& column : columns)
        plan.columns.push_back({column.name, column.value.type});
}

/// One SELECT, whose rows may be found and read again one by one.
void TranslateSelect(Context& context, const Query& query, Plan& plan) {
    const Select& select = *query.parts.front().select;
    Scope scope;
    BoundSelect bound = QueryBinder(context, nullptr).BindSelect(select, query.orderBy, scope);
    context.RaiseMistakes();
    AddColumns(bound.columns, plan);
    if (!bound.IsPlain()) {
        plan.text = Writer().Text(bound);
        return;
    }
    const ScopeSource& source = scope.sources.front();
    const TermPtr rowNumber = MakeTerm(source.RowId());
    if (const TermPtr lookUp = LookUpTerm(select.where.get(), scope)) {
        bound.where = MakeTerm(u"% AND %", {{bound.where, AndPrecedence}, lookUp}, AndPrecedence);
        bound.orderBy.push_back({MakeBound(DataType::Long, rowNumber)}); // which does not tell of the index
    }
    plan.text = Writer().Text(bound, source.RowId());
    plan.rowTable = source.table->name;
    const TermPtr parameter = MakeTerm(u'?' + QString::number(context.ParameterCount() + 1));
    bound.where = MakeTerm(u"% = %", {rowNumber, parameter}, EqualPrecedence);
    bound.orderBy.clear();
    plan.rowText = Writer().Text(bound);
}

void TranslateTransform(Context& context, const Statement& statement, const std::vector<Heading>* headings,
                        Plan& plan) {
    const auto [select, asks] = BindTransform(context, *statement.transform, *statement.query, headings);
    (asks ? plan.headingsText : plan.text) = Writer().Text(select);
    if (!asks)
        AddColumns(select.columns, plan);
}

void TranslateQuery(Context& context, const Statement& statement, Purpose purpose,
                    const std::vector<Heading>* headings, Plan& plan) {
    const bool executes = purpose == Purpose::Execute;
    if (statement.kind == Statement::TableKind) {
        if (executes || !context.FindTable(statement.table))
            RaiseEngine(UnknownTable, statement.table);
        TranslateSelect(context, WholeTable(statement.table), plan);
        return;
    }
    const Query& query = *statement.query;
    const bool single = query.parts.size() == 1 && query.parts.front().select;
    if (statement.transform) {
        TranslateTransform(context, statement, headings, plan);
    } else if (single && !query.parts.front().select->into.isEmpty()) {
        plan.text = plan.ignoreText = Writer().Insert(BindInto(context, query, plan));
    } else if (single) {
        TranslateSelect(context, query, plan);
    } else {
        const QueryPtr bound = QueryBinder(context, nullptr).Bind(query);
        plan.text = Writer().Text(*bound);
        AddColumns(bound->columns, plan);
    }
    if (executes && plan.verb == Verb::Select) {
        context.RaiseMistakes();
        RaiseEngine(CannotExecuteSelect);
    }
}

/// UPDATE or DELETE in both of its forms.
void WriteChange(QString (Writer::*write)(const BoundChange&) const, BoundChange bound, const Node* where,
                 const Scope& scope, Plan& plan) {
    if (const TermPtr lookUp = LookUpTerm(where, scope))
        bound.conditions.emplace_back(lookUp);
    plan.text = (Writer().*write)(bound);
    plan.ignoreText = (Writer(true).*write)(bound);
}

} // namespace

Plan Translate(const Scanned& scanned, const Catalog& catalog, Purpose purpose,
               const std::vector<Heading>* headings) {
    const Statement statement = Parser(scanned.text, scanned.cacheable).ParseStatement();
    Context context(scanned, catalog);
    Scope scope;
    Plan plan;
    switch (statement.kind) {
    case Statement::QueryKind:
    case Statement::TableKind:
        TranslateQuery(context, statement, purpose, headings, plan);
        break;
    case Statement::SchemaKind:
        plan.verb = Verb::Schema;
        plan.change = statement.schema;
        plan.target = statement.schema.table.name;
        Changed(plan.change, catalog);
        break;
    case Statement::InsertKind: {
        const BoundInsert bound = BindInsert(context, statement.insert, plan);
        plan.text = Writer().Insert(bound);
        plan.ignoreText = Writer(true).Insert(bound);
        break;
    }
    case Statement::UpdateKind:
        WriteChange(&Writer::Update, BindUpdate(context, scope, statement.update, plan),
                    statement.update.where.get(), scope, plan);
        break;
    case Statement::DeleteKind:
        WriteChange(&Writer::Delete, BindDelete(context, scope, statement.remove, plan),
                    statement.remove.where.get(), scope, plan);
        break;
    }
    context.RaiseMistakes();
    plan.parameters = context.Parameters();
    if (purpose == Purpose::OpenRecordset && plan.verb != Verb::Select)
        RaiseEngine(InvalidOperation);
    return plan;
}

} // namespace engine::sql
