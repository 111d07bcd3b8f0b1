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
    struct NewValue {
        int column = 0; ///< place in the table
        QString text;
    };
    using NewRow = std::vector<NewValue>;

    const TableInfo& TargetTable(const QString& name) const;
    std::vector<int> InsertColumns(const Insert& insert, const TableInfo& table) const;
    QString InsertText(const Insert& insert, const TableInfo& table, const std::vector<int>& columns);
    QString InsertQueryText(const Insert& insert, const TableInfo& table, std::vector<int> columns);
    std::vector<int> FilledColumns(const WrittenQuery& query, const TableInfo& table,
                                   std::vector<int> columns) const;
    void AddUntold(const TableInfo& table, NewRow& row) const;
    QString InsertRows(const TableInfo& table, NewRow row, const QString& from) const;
    /// A value on its way into a column: converted, and NULL refused where it would stand in a key.
    QString Assigned(const Node& node, ExpressionWriter& writer, const TableInfo& table, int column);
    QString Converted(const Written& value, const TableInfo& table, int column, int size) const;
    static bool IsKey(const TableInfo& table, int column);
    QStringList KeyStays(const TableInfo& table, int column, const QString& value) const;
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
