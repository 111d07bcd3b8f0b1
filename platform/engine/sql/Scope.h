#pragma once

#include "platform/engine/sql/Bound.h"
#include "platform/engine/sql/Tree.h"

#include <limits>
#include <map>
#include <optional>
#include <vector>

namespace engine::sql {

/// The tables whose columns a clause can name.
struct Scope {
    const Scope* outer = nullptr; ///< of the statement around this one
    std::vector<ScopeSource> sources = {};

    bool OneTable() const { return sources.size() == 1 && sources.front().table; }
    /// A column of this scope alone; failure 3079 if several sources have it. `first` and `end` narrow the
    /// search to the sources of one join.
    std::optional<ScopePlace> Find(const QString& qualifier, const QString& name, std::size_t first = 0,
                                   std::size_t end = std::numeric_limits<std::size_t>::max()) const;
    const BoundColumn& Column(ScopePlace place) const { return sources[place.source].columns[place.column]; }

    /// Whether two expressions over this scope mean the same.
    bool Same(const Node& a, const Node& b) const;
    /// Whether an expression of a query with groups names only what a group decides.
    bool IsDecided(const Node& node, const std::vector<NodePtr>& groups) const;
};

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
    TermPtr BindAssigned(const Node& literal, const ColumnInfo& column);

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
    QString ParameterOf(const Node& literal, const std::optional<ColumnInfo>& column);

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
