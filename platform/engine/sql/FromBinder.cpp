// The FROM of a statement.
#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/QueryBinder.h"

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

/// Collects the sources into the scope first, since any ON may name any of them.
class FromBinder {
public:
    FromBinder(Context& context, Scope& scope)
        : m_context(context)
        , m_scope(scope) {}

    void Collect(const Source& source) {
        if (source.left) {
            Collect(*source.left);
            Collect(*source.right);
        } else if (source.query) {
            AddQuery(source);
        } else {
            AddTable(source);
        }
    }

    TermPtr Bind(const Source& source) { return source.left ? BindJoin(source) : m_terms[m_next++]; }

private:
    void AddTable(const Source& source) {
        const TableInfo* table = m_context.FindTable(source.table);
        if (!table)
            RaiseEngine(UnknownTable, source.table);
        ScopeSource added{
            source.alias.isEmpty() ? table->name : source.alias, m_context.NewAlias(), table, {}};
        for (const ColumnInfo& column : table->columns) {
            Bound value = StoredValue(added.alias + u'.' + QuoteName(column.name), column.type, column.size);
            // Files of before may hold NULL where No is meant; a row that an outer join leaves out holds
            // none.
            if (column.type == DataType::Bit)
                value.term = MakeTerm(u"CASE WHEN % IS NOT NULL THEN ifnull(%, 0) END",
                                      {MakeTerm(added.RowId()), value});
            value.collated = value.IsText();
            added.columns.push_back({column.name, std::move(value)});
        }
        m_terms.push_back(MakeTerm(QuoteName(table->name) + u" AS "_s + added.alias));
        m_scope.sources.push_back(std::move(added));
    }

    void AddQuery(const Source& source) {
        const QueryPtr query = QueryBinder(m_context, nullptr).Bind(*source.query);
        ScopeSource added{source.alias, m_context.NewAlias(), nullptr, {}};
        for (const BoundColumn& column : query->columns) {
            const QString place = QString::number(added.columns.size());
            Bound value = DeliveredValue(column.value, MakeTerm(added.alias + u".c"_s + place));
            value.nullable = true; // an outer join may leave it out
            value.null = false;
            added.columns.push_back({column.name, std::move(value)});
        }
        m_terms.push_back(MakeTerm(u"(%) AS "_s + added.alias, {query}));
        m_scope.sources.push_back(std::move(added));
    }

    TermPtr BindJoin(const Source& join) {
        const std::size_t first = m_next;
        TermPtr left = Bind(*join.left);
        TermPtr right = Bind(*join.right);
        ExpressionBinder binder(m_context, m_scope, AggregateInJoin);
        binder.LimitSources(first, m_next);
        const Bound condition = binder.Condition(*join.on);
        // A right join is a left join seen from the other side, which every SQLite knows.
        if (join.join == JoinKind::Right)
            std::swap(left, right);
        return MakeTerm(join.join == JoinKind::Inner ? u"% JOIN % ON %" : u"% LEFT JOIN % ON %",
                        {left, {right, PrimaryPrecedence}, condition}, JoinPrecedence);
    }

    Context& m_context;
    Scope& m_scope;
    std::vector<TermPtr> m_terms; ///< of each source
    std::size_t m_next = 0;       ///< source that is bound next
};

} // namespace

TermPtr BindFrom(Context& context, Scope& scope, const std::vector<SourcePtr>& from) {
    FromBinder binder(context, scope);
    for (const auto& source : from)
        binder.Collect(*source);
    QString form;
    std::vector<Operand> sources;
    for (const auto& source : from) {
        // A join behind a comma is one operand.
        sources.emplace_back(binder.Bind(*source), sources.empty() ? 0 : PrimaryPrecedence);
        form += form.isEmpty() ? u"%"_s : u", %"_s;
    }
    return form.isEmpty() ? nullptr : MakeTerm(form, std::move(sources));
}

} // namespace engine::sql
