#include "platform/engine/EngineError.h"
#include "platform/engine/schema/LookUps.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/Binder.h"
#include "platform/engine/sql/Parser.h"
#include "platform/engine/sql/Writer.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

/// The column and the literal of `column = literal`, or of a LIKE without wildcards, if that is what the node
/// is; a number column against a whole number, or a text column against a text.
std::optional<KeyCondition> KeyOf(const Node& node, const Scope& scope) {
    if (node.kind != NodeKind::Binary || node.negated || (node.op != Op::Equal && node.op != Op::Like))
        return {};
    const Node* name = node.children[0].get();
    const Node* literal = node.children[1].get();
    if (node.op == Op::Equal && name->kind == NodeKind::Literal)
        std::swap(name, literal);
    if (name->kind != NodeKind::Name || literal->kind != NodeKind::Literal || literal->literal < 0)
        return {};
    const auto place = scope.Find(name->qualifier, name->name);
    if (!place)
        return {};
    const DataType type = scope.Column(*place).value.type;
    const bool text = literal->token.kind == TokenKind::Text && KindOf(type) == TypeKind::Text;
    const bool number =
        literal->token.kind == TokenKind::Integer && IsWholeNumber(type) && node.op == Op::Equal;
    if (!text && !number)
        return {};
    if (node.op == Op::Like && !ExpressionBinder::IsPlainPattern(*literal))
        return {};
    return KeyCondition{static_cast<int>(place->column), literal->literal};
}

/// A further condition for a WHERE over one table that names a value for the first column of a look-up:
/// `q1."a02clid" = q1."a02clid"`, without which SQLite does not take the look-up's index. Else null.
TermPtr LookUpTerm(const Node* where, const Scope& scope) {
    if (where == nullptr || !scope.OneTable())
        return nullptr;
    if (where->kind == NodeKind::Binary && where->op == Op::And) {
        const TermPtr left = LookUpTerm(where->children[0].get(), scope);
        return left ? left : LookUpTerm(where->children[1].get(), scope);
    }
    const auto key = KeyOf(*where, scope);
    const ScopeSource& source = scope.sources.front();
    if (!key || !BeginsLookUp(*source.table, source.table->At(key->column)))
        return nullptr;
    const TermPtr column = source.columns[static_cast<std::size_t>(key->column)].value.term;
    return MakeTerm(u"% = %", {column, column}, EqualPrecedence);
}

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

/// The columns of the result as one source, whose values come as parameters.
ScopeSource ResultSource(const std::vector<ResultColumn>& columns) {
    ScopeSource source;
    for (const ResultColumn& column : columns) {
        const QString number = QString::number(source.columns.size() + 1);
        source.columns.push_back({column.name, StoredValue(u'?' + number, column.type)});
    }
    return source;
}

/// A name with a table in front is that of a column of the same full name, or of a column of the plain name.
void ResolveFullNames(Node& node, const std::vector<ResultColumn>& columns) {
    if (node.kind == NodeKind::Name && !node.qualifier.isEmpty()) {
        const QString full = node.qualifier + u'.' + node.name;
        if (std::ranges::any_of(columns,
                                [&](const ResultColumn& column) { return SameName(column.name, full); }))
            node.name = full;
        node.qualifier.clear();
    }
    for (const auto& child : node.children)
        ResolveFullNames(*child, columns);
}

bool HasQuery(const Node& node) {
    return node.query ||
           std::ranges::any_of(node.children, [](const NodePtr& child) { return HasQuery(*child); });
}

/// The equalities among the conditions that are joined by AND.
void CollectEqualities(const Node& node, const Scope& scope, std::vector<KeyCondition>& equalities) {
    if (node.kind == NodeKind::Binary && node.op == Op::And) {
        CollectEqualities(*node.children[0], scope, equalities);
        CollectEqualities(*node.children[1], scope, equalities);
    } else if (const auto key = KeyOf(node, scope)) {
        equalities.push_back(*key);
    }
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

CriteriaPlan TranslateCriteria(const Scanned& scanned, const std::vector<ResultColumn>& columns) {
    const NodePtr criteria = Parser(scanned.text, scanned.cacheable).ParseCriteria();
    if (HasQuery(*criteria))
        RaiseEngine(SyntaxInCriteria, u"Ошибка синтаксиса"_s);
    ResolveFullNames(*criteria, columns);
    const Scope scope{nullptr, {ResultSource(columns)}};
    Context context(scanned, static_cast<int>(columns.size()));
    const Bound condition = ExpressionBinder(context, scope, &AggregateInExpression).Condition(*criteria);
    context.RaiseMistakes();
    CriteriaPlan plan;
    // The last parameter is named even if nothing else needs it, so that all of them can be bound.
    plan.text = u"SELECT "_s + Writer().Text(condition.term) + u" FROM (SELECT ?"_s +
                QString::number(context.ParameterCount()) + u')';
    plan.parameters = context.Parameters();
    CollectEqualities(*criteria, scope, plan.equalities);
    return plan;
}

} // namespace engine::sql
