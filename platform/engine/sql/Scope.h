#pragma once

#include "platform/engine/sql/Plan.h"
#include "platform/engine/sql/Written.h"

#include <optional>
#include <vector>

namespace engine::sql {

/// A column that a FROM offers.
struct ScopeColumn {
    QString name;
    Written value;
};

/// A table or sub-query of a FROM.
struct ScopeSource {
    QString name;                     ///< by which columns are qualified
    QString alias;                    ///< in SQLite's text
    const TableInfo* table = nullptr; ///< null for a sub-query
    std::vector<ScopeColumn> columns;

    /// The row number in SQLite's words, under a name that no column hides.
    QString RowId() const;
};

/// Place of a column in a scope.
struct ScopePlace {
    int source = 0;
    int column = 0;

    friend bool operator==(const ScopePlace&, const ScopePlace&) = default;
};

/// The tables whose columns a clause can name, and those of the statement around it.
class Scope {
public:
    explicit Scope(const Scope* outer)
        : m_outer(outer) {}

    const Scope* Outer() const { return m_outer; }
    std::vector<ScopeSource>& Sources() { return m_sources; }
    const std::vector<ScopeSource>& Sources() const { return m_sources; }

    /// A column of this scope alone; failure 3079 if several sources have it. `first` and `last` narrow the
    /// search to the sources of one join.
    std::optional<ScopePlace> Find(const QString& qualifier, const QString& name) const;
    std::optional<ScopePlace> Find(const QString& qualifier, const QString& name, int first, int last) const;

    const ScopeColumn& Column(ScopePlace place) const {
        return m_sources[static_cast<std::size_t>(place.source)]
            .columns[static_cast<std::size_t>(place.column)];
    }

private:
    const Scope* m_outer;
    std::vector<ScopeSource> m_sources;
};

} // namespace engine::sql
