#pragma once

#include "platform/engine/run/Recent.h"
#include "platform/engine/run/RowBuffer.h"

#include <optional>
#include <vector>

namespace engine {

/// Finds rows of a result by criteria. Conditions `column = literal` narrow the search through a hash over
/// the rows, made at the first use of those columns, so that a search for each row of a long run does not
/// look at the whole result each time.
class Finder {
public:
    /// Database, rows and columns outlive the finder's use.
    Finder(const Sqlite& db, const RowBuffer& rows, const std::vector<sql::ResultColumn>& columns)
        : m_db(db)
        , m_rows(rows)
        , m_columns(columns) {}

    /// The first row that meets the criteria. Failures 3077, 3070 and those of evaluating an expression.
    std::optional<std::size_t> First(const QString& criteria);

    /// The rows are other ones.
    void ForgetRows() noexcept { m_indexes.clear(); }

private:
    struct Search {
        sql::CriteriaPlan plan;
        Statement truth;
    };
    /// Pairs of hash and row, in this order.
    struct Index {
        std::vector<int> columns;
        std::vector<std::pair<std::size_t, std::uint32_t>> rows;
    };

    Search& SearchFor(const QString& criteria, sql::Scanned& scanned);
    const Index& IndexOver(const std::vector<int>& columns);
    bool IsTrue(Search& search, std::size_t row, const std::vector<sql::Literal>& literals) const;

    const Sqlite& m_db;
    const RowBuffer& m_rows;
    const std::vector<sql::ResultColumn>& m_columns;
    static constexpr std::size_t mostSearches = 50;
    Recent<Search> m_searches{mostSearches};
    std::vector<Index> m_indexes;
};

} // namespace engine
