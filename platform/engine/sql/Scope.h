#pragma once

#include "platform/engine/sql/Bound.h"
#include "platform/engine/sql/Tree.h"

#include <limits>
#include <optional>
#include <vector>

namespace engine::sql {

/// A column that a FROM offers.
struct ScopeColumn {
    QString name;
    Bound value;
};

/// A table or sub-query of a FROM.
struct ScopeSource {
    QString name = {};                ///< by which columns are qualified
    QString alias = {};               ///< in SQLite's text
    const TableInfo* table = nullptr; ///< null for a sub-query
    std::vector<ScopeColumn> columns = {};

    /// SQLite's row number under that of its three names that no column of the table bears.
    QString RowId() const;
};

/// Place of a column in a scope.
struct ScopePlace {
    std::size_t source = 0;
    std::size_t column = 0;

    friend bool operator==(const ScopePlace&, const ScopePlace&) = default;
};

/// The tables whose columns a clause can name.
struct Scope {
    const Scope* outer = nullptr; ///< of the statement around this one
    std::vector<ScopeSource> sources = {};

    bool OneTable() const { return sources.size() == 1 && sources.front().table; }
    /// A column of this scope alone; failure 3079 if several sources have it. `first` and `end` narrow the
    /// search to the sources of one join.
    std::optional<ScopePlace> Find(const QString& qualifier, const QString& name, std::size_t first = 0,
                                   std::size_t end = std::numeric_limits<std::size_t>::max()) const;
    const ScopeColumn& Column(ScopePlace place) const { return sources[place.source].columns[place.column]; }

    /// Whether two expressions over this scope mean the same.
    bool Same(const Node& a, const Node& b) const;
    /// Whether an expression of a query with groups names only what a group decides.
    bool IsDecided(const Node& node, const std::vector<NodePtr>& groups) const;
};

} // namespace engine::sql
