#include "platform/engine/EngineError.h"
#include "platform/engine/sql/ActionWriter.h"
#include "platform/engine/sql/Keys.h"
#include "platform/engine/sql/Parser.h"
#include "platform/engine/sql/QueryWriter.h"
#include "platform/engine/sql/TransformWriter.h"

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

/// Translates one statement that has been read.
class Translation {
public:
    Translation(const Scanned& scanned, const Catalog& catalog, const std::vector<Heading>* headings)
        : m_catalog(catalog)
        , m_headings(headings)
        , m_context(scanned, 0) {}

    Plan Run(const Statement& statement, Purpose purpose) {
        switch (statement.kind) {
        case Statement::QueryKind:
        case Statement::TableKind:
            TranslateQuery(statement, purpose);
            break;
        case Statement::SchemaKind:
            m_plan.verb = Verb::Schema;
            m_plan.change = statement.schema;
            m_plan.target = statement.schema.table.name;
            CheckChange(m_plan.change, m_catalog);
            break;
        case Statement::InsertKind:
            ActionWriter(m_context, m_catalog).WriteInsert(statement.insert, m_plan);
            break;
        case Statement::UpdateKind:
            ActionWriter(m_context, m_catalog).WriteUpdate(statement.update, m_plan);
            break;
        case Statement::DeleteKind:
            ActionWriter(m_context, m_catalog).WriteDelete(statement.remove, m_plan);
            break;
        }
        m_context.RaiseMistakes();
        m_plan.parameters = m_context.Parameters();
        if (purpose == Purpose::OpenRecordset && m_plan.verb != Verb::Select)
            RaiseEngine(InvalidOperation);
        return std::move(m_plan);
    }

private:
    void TranslateQuery(const Statement& statement, Purpose purpose) {
        if (statement.kind == Statement::TableKind) {
            if (purpose == Purpose::Execute || !m_catalog.FindTable(statement.table))
                RaiseEngine(UnknownTable, statement.table);
            WriteSelect(WholeTable(statement.table));
            return;
        }
        const Query& query = *statement.query;
        const auto& first = query.parts.front();
        if (statement.transform)
            TransformWriter(m_context, m_catalog).Write(*statement.transform, query, m_headings, m_plan);
        else if (query.parts.size() == 1 && first.select && !first.select->into.isEmpty())
            ActionWriter(m_context, m_catalog).WriteInto(query, m_plan);
        else
            WriteSelect(query);
        if (purpose == Purpose::Execute && m_plan.verb == Verb::Select) {
            m_context.RaiseMistakes();
            RaiseEngine(CannotExecuteSelect);
        }
    }

    void WriteSelect(const Query& query) {
        m_plan.verb = Verb::Select;
        const bool simple = query.parts.size() == 1 && query.parts.front().select;
        if (!simple) {
            const WrittenQuery written =
                QueryWriter(m_context, &m_catalog, nullptr).Write(query, ColumnNames::None);
            m_plan.text = written.text;
            AddColumns(written.columns);
            return;
        }
        const Select& select = *query.parts.front().select;
        QueryWriter writer(m_context, &m_catalog, nullptr);
        Scope scope(nullptr);
        const SelectParts parts = writer.WriteParts(select, query.orderBy, scope);
        m_context.RaiseMistakes();
        AddColumns(parts.columns);
        const QString row = QString::number(m_context.ParameterCount() + 1);
        QString rowNumber;
        if (parts.IsPlain()) {
            rowNumber = parts.from.table->RowId();
            SelectParts one = parts;
            one.where = rowNumber + u" = ?"_s + row;
            one.orderBy.clear();
            m_plan.rowText = writer.Assemble(one, ColumnNames::None);
            m_plan.rowTable = parts.from.table->table->name;
        }
        m_plan.text = writer.Assemble(parts, ColumnNames::None, {}, rowNumber);
        if (!parts.from.table)
            return;
        m_plan.keys = FindKeys(select.where.get(), scope);
        if (m_plan.keys.empty())
            return;
        m_plan.keyTable = parts.from.table->table->name;
        const auto keyed = [&](Rows rows) {
            return writer.Assemble(parts, ColumnNames::None,
                                   KeyText(*parts.from.table, m_context.ParameterCount() + 1, rows),
                                   rowNumber);
        };
        m_plan.keyedText = keyed(Rows::Listed);
        m_plan.keyedRowText = keyed(Rows::One);
    }

    void AddColumns(const std::vector<WrittenColumn>& columns) {
        for (const WrittenColumn& column : columns)
            m_plan.columns.push_back({column.name, column.value.type});
    }

    const Catalog& m_catalog;
    const std::vector<Heading>* m_headings;
    Context m_context;
    Plan m_plan;
};

} // namespace

Plan Translate(const Scanned& scanned, const Catalog& catalog, Purpose purpose,
               const std::vector<Heading>* headings) {
    const Statement statement = Parser(scanned.text, scanned.cacheable).ParseStatement();
    return Translation(scanned, catalog, headings).Run(statement, purpose);
}

} // namespace engine::sql
