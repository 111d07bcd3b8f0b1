// The FROM of a statement.
#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/QueryWriter.h"

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

/// Collects the sources into the scope first, since any ON may name any of them.
class FromWriter {
public:
    FromWriter(Context& context, Scope& scope)
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

    QString Write(const Source& source) { return source.left ? WriteJoin(source) : m_texts[m_next++]; }

private:
    void AddTable(const Source& source) {
        const TableInfo* table = m_context.FindTable(source.table);
        if (!table)
            RaiseEngine(UnknownTable, source.table);
        ScopeSource added{
            source.alias.isEmpty() ? table->name : source.alias, m_context.NewAlias(), table, {}};
        for (const ColumnInfo& column : table->columns) {
            Written value =
                StoredValue(added.alias + u'.' + QuoteName(column.name), column.type, column.size);
            // Files of before may hold NULL where No is meant; a row that an outer join leaves out holds
            // none.
            if (column.type == DataType::Bit)
                value.text = u"CASE WHEN "_s + added.RowId() + u" IS NOT NULL THEN ifnull("_s + value.text +
                             u", 0) END"_s;
            value.collated = value.IsText();
            added.columns.push_back({column.name, std::move(value)});
        }
        m_texts.push_back(QuoteName(table->name) + u" AS "_s + added.alias);
        m_scope.sources.push_back(std::move(added));
    }

    void AddQuery(const Source& source) {
        const WrittenQuery query = QueryWriter(m_context, nullptr).Write(*source.query);
        ScopeSource added{source.alias, m_context.NewAlias(), nullptr, {}};
        for (const WrittenColumn& column : query.columns) {
            const QString place = QString::number(added.columns.size());
            Written value = DeliveredValue(column.value, added.alias + u".c"_s + place);
            value.nullable = true; // an outer join may leave it out
            value.null = false;
            added.columns.push_back({column.name, std::move(value)});
        }
        m_texts.push_back(u'(' + query.text + u") AS "_s + added.alias);
        m_scope.sources.push_back(std::move(added));
    }

    QString WriteJoin(const Source& join) {
        const std::size_t first = m_next;
        QString left = Write(*join.left);
        QString right = Write(*join.right);
        ExpressionWriter writer(m_context, m_scope, AggregateInJoin);
        writer.LimitSources(first, m_next);
        const QString condition = writer.Condition(*join.on).text;
        // A right join is a left join seen from the other side, which every SQLite knows.
        const bool turned = join.join == JoinKind::Right;
        const Source& behind = turned ? *join.left : *join.right;
        if (turned)
            std::swap(left, right);
        if (behind.left)
            right = u'(' + right + u')';
        return left + (join.join == JoinKind::Inner ? u" JOIN "_s : u" LEFT JOIN "_s) + right + u" ON "_s +
               condition;
    }

    Context& m_context;
    Scope& m_scope;
    std::vector<QString> m_texts; ///< of each source
    std::size_t m_next = 0;       ///< source that is written next
};

} // namespace

QString WriteFrom(Context& context, Scope& scope, const std::vector<SourcePtr>& from) {
    FromWriter writer(context, scope);
    for (const auto& source : from)
        writer.Collect(*source);
    QStringList texts;
    for (const auto& source : from) {
        const QString text = writer.Write(*source);
        // A join behind a comma is one operand.
        texts += !texts.isEmpty() && source->left ? u'(' + text + u')' : text;
    }
    return texts.join(u", "_s);
}

} // namespace engine::sql
