#pragma once

#include "platform/engine/sql/Bound.h"
#include "platform/engine/sql/Tree.h"

#include <map>
#include <optional>

namespace engine::sql {

/// What the binders of one statement share: the tables, its literals on their way to parameters, and the
/// mistakes that are reported only when the whole of it is known.
class Context {
public:
    Context(const Scanned& scanned, const Catalog& catalog)
        : m_scanned(scanned)
        , m_catalog(&catalog) {}
    /// For the criteria of a search: `columns` parameters stand before those of the literals.
    Context(const Scanned& scanned, int columns)
        : m_scanned(scanned)
        , m_firstParameter(columns) {}

    /// Null if there is none.
    const TableInfo* FindTable(const QString& name) const {
        return m_catalog ? m_catalog->FindTable(name) : nullptr;
    }

    /// A literal: a parameter, or its value if the statement writes it out.
    Bound BindLiteral(const Node& literal);
    /// A literal that goes into a column as it is: a parameter with that column. Null if the node is none,
    /// or its value is written out.
    TermPtr BindAssigned(const Node& literal, const ColumnInfo& column, const QString& table);

    QStringView Text(const Node& node) const {
        return QStringView(m_scanned.text).mid(node.start, node.end - node.start);
    }

    const std::vector<Parameter>& Parameters() const { return m_parameters; }
    int ParameterCount() const { return m_firstParameter + static_cast<int>(m_parameters.size()); }

    void AddUnknownName(const QString& name);
    void AddTypeMismatch() { m_mismatch = true; }
    const QStringList& UnknownNames() const { return m_unknown; }
    /// Failures 3061 (3070 in criteria) and 3464, if anything called for them.
    void RaiseMistakes() const;

    /// A name for a source, unlike any other in the statement.
    QString NewAlias() { return u'q' + QString::number(++m_aliases); }

    /// Failure 3075 with the text of the expression, 3077 in criteria.
    [[noreturn]] void RaiseSyntax(const Node& node, const QString& reason) const;

private:
    QString ParameterOf(const Node& literal, const std::optional<ColumnInfo>& column, const QString& table);

    const Scanned& m_scanned;
    const Catalog* m_catalog = nullptr; ///< null in criteria
    int m_firstParameter = 0;
    std::vector<Parameter> m_parameters;
    std::map<int, int> m_numbers; ///< parameter of each literal
    QStringList m_unknown;
    bool m_mismatch = false;
    int m_aliases = 0;
};

} // namespace engine::sql
