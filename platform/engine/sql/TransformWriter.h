#pragma once

#include "platform/engine/sql/QueryWriter.h"

namespace engine::sql {

/// Writes TRANSFORM: one row for each group, one column for each value of the pivot.
class TransformWriter {
public:
    TransformWriter(Context& context, const Catalog& catalog)
        : m_context(context)
        , m_catalog(catalog) {}

    /// `headings`: the values that the rows have told, null if they have not been asked yet; the plan then
    /// holds the query for them.
    void Write(const Transform& transform, const Query& query, const std::vector<Heading>* headings,
               Plan& plan);

private:
    struct PivotColumn {
        Written value;
        QString name;
    };

    std::vector<PivotColumn> ListedColumns(const Transform& transform, ExpressionWriter& writer) const;
    std::vector<PivotColumn> ToldColumns(const std::vector<Heading>& headings, const Written& pivot) const;
    static QString HeadingsText(const SelectParts& parts, const Written& pivot);

    Context& m_context;
    const Catalog& m_catalog;
};

} // namespace engine::sql
