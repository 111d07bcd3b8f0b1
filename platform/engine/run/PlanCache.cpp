#include "platform/engine/run/PlanCache.h"

#include "platform/engine/run/Runner.h"

#include <algorithm>

namespace engine {

namespace {

constexpr int maxPlans = 200;

} // namespace

const BoundPlan& PlanCache::Of(const QString& text, sql::Purpose purpose) {
    sql::Scan(text, m_bound.scanned);
    Plans& plans = purpose == sql::Purpose::Execute ? m_actions : m_queries;
    const sql::Scanned& scanned = m_bound.scanned;
    m_bound.cached = scanned.cacheable ? plans.value(scanned.shape) : nullptr;
    if (!m_bound.cached) {
        m_bound.cached = Translate(purpose);
        const sql::Plan& plan = m_bound.cached->plan;
        // The columns of a TRANSFORM are told by the rows at each opening.
        if (scanned.cacheable && plan.headingsText.isEmpty() && plan.verb != sql::Verb::Schema &&
            plan.verb != sql::Verb::SelectInto) {
            if (plans.size() >= maxPlans)
                plans.erase(std::ranges::min_element(plans.begin(), plans.end(), {},
                                                     [](const auto& kept) { return kept->lastUse; }));
            plans.insert(scanned.shape, m_bound.cached);
        }
    }
    m_bound.cached->lastUse = ++m_useCount;
    return m_bound;
}

std::shared_ptr<CachedPlan> PlanCache::Translate(sql::Purpose purpose) {
    auto cached = std::make_shared<CachedPlan>();
    sql::Plan& plan = cached->plan;
    plan = sql::Translate(m_bound.scanned, m_catalog, purpose);
    if (const QString headingsText = plan.headingsText; !headingsText.isEmpty()) {
        const auto headings = ReadHeadings(plan);
        plan = sql::Translate(m_bound.scanned, m_catalog, purpose, &headings);
        plan.headingsText = headingsText;
    }
    const TableInfo* target = plan.verb == sql::Verb::Insert ? m_catalog.FindTable(plan.target) : nullptr;
    cached->countsUp = target != nullptr && target->CounterColumn() >= 0;
    return cached;
}

std::vector<sql::Heading> PlanCache::ReadHeadings(const sql::Plan& plan) const {
    Statement statement(m_db, plan.headingsText);
    Binding binding(statement);
    binding.Bind(1, plan.parameters, m_bound.scanned.literals);
    std::vector<sql::Heading> headings;
    while (statement.Next())
        headings.push_back({statement.Text(0), statement.Text(1)});
    return headings;
}

void PlanCache::Drop() noexcept {
    m_queries.clear();
    m_actions.clear();
}

} // namespace engine
