#include "platform/engine/run/PlanCache.h"

#include "platform/engine/run/Runner.h"

namespace engine {

const BoundPlan& PlanCache::Of(const QString& text, sql::Purpose purpose) {
    Plans& plans = purpose == sql::Purpose::Execute ? m_actions : m_queries;
    if (const auto* known = plans.Find(text, m_bound.scanned)) {
        m_bound.cached = *known;
        return m_bound;
    }
    m_bound.scanned = sql::Scan(text);
    m_bound.cached = Translate(purpose);
    const sql::Plan& plan = m_bound.cached->plan;
    // The columns of a TRANSFORM are told by the rows at each opening.
    if (m_bound.scanned.cacheable && plan.headingsText.isEmpty() && plan.verb != sql::Verb::Schema &&
        plan.verb != sql::Verb::SelectInto)
        plans.Keep(m_bound.scanned, m_bound.cached);
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
    m_queries.Clear();
    m_actions.Clear();
}

} // namespace engine
