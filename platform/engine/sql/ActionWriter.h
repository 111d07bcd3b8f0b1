#pragma once

#include "platform/engine/sql/Context.h"
#include "platform/engine/sql/Keys.h"
#include "platform/engine/sql/QueryWriter.h"

namespace engine::sql {

/// Writes INSERT, UPDATE, DELETE and SELECT ... INTO. Each text comes in two forms: one that fails, and one
/// that leaves failing rows out.
class ActionWriter {
public:
    ActionWriter(Context& context, const Catalog& catalog)
        : m_context(context)
        , m_catalog(catalog) {}

    void WriteInsert(const Insert& insert, Plan& plan);
    void WriteUpdate(const Update& update, Plan& plan);
    void WriteDelete(const Delete& remove, Plan& plan);
    void WriteInto(const Query& query, Plan& plan);

private:
    struct Target {
        const TableInfo* table = nullptr;
        const ScopeSource* source = nullptr;
    };

    const TableInfo& TargetTable(const QString& name) const;
    std::vector<int> InsertColumns(const Insert& insert, const TableInfo& table) const;
    QString InsertText(const Insert& insert, const TableInfo& table, const std::vector<int>& columns);
    QString InsertQueryText(const Insert& insert, const TableInfo& table, std::vector<int> columns);
    QString InsertStart(const TableInfo& table, const std::vector<int>& columns) const;
    /// A value on its way into a column: converted, and refused where the row number would be made up.
    QString Assigned(const Node& node, ExpressionWriter& writer, const TableInfo& table, int column);
    QString Converted(const Written& value, const TableInfo& table, int column, int size) const;
    QString MissingKey(const TableInfo& table, int column) const;
    QString FullName(const TableInfo& table, int column) const;

    QString UpdateText(const Update& update, Plan& plan, Rows rows);
    QString UpdateJoinText(const Update& update, const Scope& scope, const Target& target,
                           const QString& from);
    Target UpdateTarget(const Update& update, const Scope& scope) const;
    QString DeleteText(const Delete& remove, Plan& plan, Rows rows);
    Target DeleteTarget(const Delete& remove, const Scope& scope);

    Context& m_context;
    const Catalog& m_catalog;
};

} // namespace engine::sql
