#pragma once

#include "platform/engine/sql/Plan.h"

#include <list>

namespace engine {

/// What has been made of the texts that came last, to be found again by a text with the same plan.
template <class Made>
class Recent {
public:
    explicit Recent(std::size_t most)
        : m_most(most) {}

    /// What was made of such a text, which is taken apart into `scanned`; null if there is none.
    Made* Find(const QString& text, sql::Scanned& scanned) {
        for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry)
            if (sql::ScanLike(entry->known, text, scanned)) {
                m_entries.splice(m_entries.begin(), m_entries, entry);
                return &entry->made;
            }
        return nullptr;
    }
    Made& Keep(const sql::Scanned& scanned, Made made) {
        if (m_entries.size() == m_most)
            m_entries.pop_back();
        return m_entries.emplace_front(Entry{scanned, std::move(made)}).made;
    }
    void Clear() noexcept { m_entries.clear(); }

private:
    struct Entry {
        sql::Scanned known;
        Made made;
    };
    std::size_t m_most;
    std::list<Entry> m_entries; ///< the last one first
};

} // namespace engine
