#pragma once

#include "platform/engine/run/Recent.h"
#include "platform/engine/store/Statement.h"

#include <memory>

namespace engine {

/// A translated statement and what SQLite has compiled of it so far.
struct CachedPlan {
    sql::Plan plan;
    Statement text;
    Statement ignoreText;
    Statement rowText;
    bool countsUp = false; ///< an INSERT that can use up a generated number
};

/// A plan together with the literals of the text at hand.
struct BoundPlan {
    std::shared_ptr<CachedPlan> cached;
    sql::Scanned scanned;
};

/// The plans of the statements that came last.
class PlanCache {
public:
    /// Both outlive the cache.
    PlanCache(const Sqlite& db, const Catalog& catalog)
        : m_db(db)
        , m_catalog(catalog) {}

    /// The plan of a statement, good until the next call. Failures as sql::Translate.
    const BoundPlan& Of(const QString& text, sql::Purpose purpose);
    /// The tables have changed.
    void Drop() noexcept;

private:
    using Plans = Recent<std::shared_ptr<CachedPlan>>;
    static constexpr std::size_t mostPlans = 200;

    std::shared_ptr<CachedPlan> Translate(sql::Purpose purpose);
    std::vector<sql::Heading> ReadHeadings(const sql::Plan& plan) const;

    const Sqlite& m_db;
    const Catalog& m_catalog;
    Plans m_queries{mostPlans};
    Plans m_actions{mostPlans};
    BoundPlan m_bound; ///< of the statement at hand
};

} // namespace engine
