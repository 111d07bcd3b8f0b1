#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/QueryWriter.h"

using namespace Qt::StringLiterals;

namespace engine::sql {

WrittenFrom FromWriter::Write(const std::vector<SourcePtr>& from) {
    for (const auto& source : from)
        Collect(*source);
    WrittenFrom written;
    for (const auto& source : from) {
        QString text = WriteSource(*source);
        // A join behind a comma is one operand.
        if (!written.text.isEmpty() && source->left)
            text = u'(' + text + u')';
        written.text += written.text.isEmpty() ? text : u", "_s + text;
    }
    if (m_scope.Sources().size() == 1 && m_scope.Sources().front().table)
        written.table = &m_scope.Sources().front();
    return written;
}

void FromWriter::Collect(const Source& source) {
    if (source.left) {
        Collect(*source.left);
        Collect(*source.right);
    } else if (source.query) {
        AddQuery(source);
    } else {
        AddTable(source);
    }
}

void FromWriter::AddTable(const Source& source) {
    const TableInfo* table = m_catalog ? m_catalog->FindTable(source.table) : nullptr;
    if (!table)
        RaiseEngine(UnknownTable, source.table);
    ScopeSource added;
    added.name = source.alias.isEmpty() ? table->name : source.alias;
    added.alias = m_context.NewAlias();
    added.table = table;
    for (const ColumnInfo& column : table->columns) {
        ScopeColumn offered;
        offered.name = column.name;
        offered.value = StoredValue(added.alias + u'.' + QuoteName(column.name), column.type, column.size);
        // Files of before may hold NULL where No is meant; a row that an outer join leaves out holds none.
        if (column.type == DataType::Bit)
            offered.value.text = u"CASE WHEN "_s + added.RowId() + u" IS NOT NULL THEN ifnull("_s +
                                 offered.value.text + u", 0) END"_s;
        offered.value.nullable = true; // an outer join may leave it out
        offered.value.collated = KindOf(column.type) == TypeKind::Text;
        added.columns.push_back(std::move(offered));
    }
    m_texts.push_back(QuoteName(table->name) + u" AS "_s + added.alias);
    m_scope.Sources().push_back(std::move(added));
}

void FromWriter::AddQuery(const Source& source) {
    const WrittenQuery query = QueryWriter(m_context, m_catalog, nullptr).WriteDerived(*source.query);
    ScopeSource added;
    added.name = source.alias;
    added.alias = m_context.NewAlias();
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
        ScopeColumn offered;
        offered.name = query.columns[i].name;
        offered.value = DeliveredValue(query.columns[i].value, added.alias + u".c"_s + QString::number(i));
        offered.value.nullable = true;
        offered.value.null = false;
        added.columns.push_back(std::move(offered));
    }
    m_texts.push_back(u'(' + query.text + u") AS "_s + added.alias);
    m_scope.Sources().push_back(std::move(added));
}

QString FromWriter::WriteSource(const Source& source) {
    return source.left ? WriteJoin(source) : m_texts[static_cast<std::size_t>(m_next++)];
}

QString FromWriter::WriteJoin(const Source& join) {
    const int first = m_next;
    QString left = WriteSource(*join.left);
    QString right = WriteSource(*join.right);
    ExpressionWriter writer(m_context, m_catalog, m_scope, AggregateRule::InJoin);
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

} // namespace engine::sql
