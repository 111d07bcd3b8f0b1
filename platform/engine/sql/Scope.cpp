#include "platform/engine/sql/Scope.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"

#include <array>

using namespace Qt::StringLiterals;

namespace engine::sql {

QString ScopeSource::RowId() const {
    for (const QString& name : {u"rowid"_s, u"_rowid_"_s, u"oid"_s}) {
        if (!table || table->Find(name) < 0)
            return alias + u'.' + name;
    }
    return alias + u".rowid"_s;
}

std::optional<ScopePlace> Scope::Find(const QString& qualifier, const QString& name) const {
    return Find(qualifier, name, 0, static_cast<int>(m_sources.size()));
}

std::optional<ScopePlace> Scope::Find(const QString& qualifier, const QString& name, int first,
                                      int last) const {
    std::optional<ScopePlace> found;
    for (int source = first; source < last; ++source) {
        const ScopeSource& candidate = m_sources[static_cast<std::size_t>(source)];
        if (!qualifier.isEmpty() && !SameName(candidate.name, qualifier))
            continue;
        for (std::size_t column = 0; column < candidate.columns.size(); ++column) {
            if (!SameName(candidate.columns[column].name, name))
                continue;
            if (found && found->source != source)
                RaiseEngine(AmbiguousName, name);
            if (!found)
                found = ScopePlace{source, static_cast<int>(column)};
        }
    }
    return found;
}

} // namespace engine::sql
