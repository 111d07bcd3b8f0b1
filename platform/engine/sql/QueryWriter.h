#pragma once

#include "platform/engine/sql/Context.h"
#include "platform/engine/sql/ExpressionWriter.h"
#include "platform/engine/sql/Scope.h"

namespace engine::sql {

/// A column that a query delivers.
struct WrittenColumn {
    QString name;
    Written value;                      ///< what is known of it; its text is that of the expression
    const ColumnInfo* column = nullptr; ///< of the table, for a plain column
};

struct WrittenQuery {
    QString text;
    std::vector<WrittenColumn> columns;
    bool singleRow = false; ///< never more than one row
};

/// The FROM of a statement in SQLite's words.
struct WrittenFrom {
    QString text;
    /// Its only source, if that is a table.
    const ScopeSource* table = nullptr;
};

/// Writes sources of a FROM: collects them into the scope first, since any ON may name any of them.
class FromWriter {
public:
    FromWriter(Context& context, const Catalog* catalog, Scope& scope)
        : m_context(context)
        , m_catalog(catalog)
        , m_scope(scope) {}

    WrittenFrom Write(const std::vector<SourcePtr>& from);

private:
    void Collect(const Source& source);
    void AddTable(const Source& source);
    void AddQuery(const Source& source);
    QString WriteSource(const Source& source);
    QString WriteJoin(const Source& join);

    Context& m_context;
    const Catalog* m_catalog;
    Scope& m_scope;
    std::vector<QString> m_texts; ///< of each source
    int m_next = 0;               ///< source that is written next
};

/// The parts of one SELECT in SQLite's words.
struct SelectParts {
    std::vector<WrittenColumn> columns;
    WrittenFrom from;
    QString where;
    int wherePrecedence = 0;
    QString groupBy;
    QString having;
    std::vector<QString> orderBy;
    bool distinct = false;
    bool aggregated = false;
    bool groups = false;
    int top = 0;
    bool percent = false;

    /// Whether each row is that of one row of one table.
    bool IsPlain() const { return from.table && !distinct && !aggregated && !groups && top == 0; }
};

/// How the columns of a written SELECT are called.
enum class ColumnNames : std::uint8_t { None, Numbered /**< c0, c1 ... */ };

class QueryWriter {
public:
    QueryWriter(Context& context, const Catalog* catalog, const Scope* outer)
        : m_context(context)
        , m_catalog(catalog)
        , m_outer(outer) {}

    /// A query whose columns are called c0, c1 ...
    WrittenQuery WriteDerived(const Query& query);
    /// The same; failure 3306 if it has not exactly one column.
    WrittenQuery WriteOneColumn(const Query& query);
    WrittenQuery Write(const Query& query, ColumnNames names);

    /// The parts of a SELECT over `scope`, which is filled.
    SelectParts WriteParts(const Select& select, const std::vector<OrderItem>& orderBy, Scope& scope);
    /// `further`: one more condition; `rowNumber`: one more column.
    QString Assemble(const SelectParts& parts, ColumnNames names, const QString& further = {},
                     const QString& rowNumber = {}) const;

private:
    WrittenQuery WriteUnion(const Query& query, ColumnNames names);
    QString UnionPartText(SelectParts& part, const std::vector<WrittenColumn>& columns,
                          ColumnNames names) const;
    QString WriteUnionOrder(const Query& query, const std::vector<WrittenColumn>& columns);
    void WriteColumns(const Select& select, Scope& scope, SelectParts& parts);
    void AddAll(const SelectItem& item, Scope& scope, SelectParts& parts) const;
    void NameColumns(const Select& select, const Scope& scope, SelectParts& parts) const;
    void WriteGroups(const Select& select, Scope& scope, SelectParts& parts);
    void WriteOrder(const Select& select, const std::vector<OrderItem>& orderBy, Scope& scope,
                    SelectParts& parts);
    /// Whether an expression is one of the columns.
    bool IsShown(const Node& node, const QString& text, const Select& select, const Scope& scope,
                 const SelectParts& parts) const;
    void CheckGrouped(const Select& select, const std::vector<OrderItem>& orderBy, const Scope& scope);
    void KeepDistinctRows(const Select& select, const Scope& scope, const std::vector<bool>& used,
                          SelectParts& parts) const;
    QString AssembleTop(const SelectParts& parts, ColumnNames names, const QString& further) const;
    QString AssembleBody(const SelectParts& parts, const QString& columns, const QString& further) const;

    Context& m_context;
    const Catalog* m_catalog;
    const Scope* m_outer;
};

} // namespace engine::sql
