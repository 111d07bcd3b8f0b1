#pragma once

#include "platform/engine/run/RowBuffer.h"
#include "platform/engine/sql/Plan.h"

#include <QHash>

#include <memory>
#include <optional>
#include <vector>

namespace engine {

class Connection;

/// Finds rows of a result by criteria. Conditions `column = literal` are answered through a hash over the
/// rows, made at the first use of those columns, so that a search for each row of a long run does not scan
/// the result each time.
class Finder {
public:
    /// Buffer and columns outlive the finder's use.
    Finder(Connection& connection, const RowBuffer& rows, const std::vector<sql::ResultColumn>& columns);

    /// The first row that meets the criteria. Failures 3077, 3070 and those of evaluating an expression.
    std::optional<std::size_t> First(const QString& criteria);

    void ForgetRows() noexcept { m_indexes.clear(); }
    void Forget() noexcept;

private:
    struct Search {
        sql::CriteriaPlan plan;
        Statement truth;
    };
    /// Pairs of hash and row, in this order.
    struct Index {
        std::vector<int> columns;
        std::vector<std::pair<std::uint64_t, std::uint32_t>> rows;
    };
    using Keys = std::vector<sql::KeyCondition>;

    std::shared_ptr<Search> SearchFor(const sql::Scanned& scanned);
    const Index& IndexOver(const Keys& keys);
    bool Equal(std::size_t row, const Keys& keys, const std::vector<sql::Literal>& literals) const;
    bool IsTrue(Search& search, std::size_t row, const std::vector<sql::Literal>& literals) const;

    Connection& m_connection;
    const RowBuffer& m_rows;
    const std::vector<sql::ResultColumn>& m_columns;
    QHash<QString, std::shared_ptr<Search>> m_searches;
    std::vector<Index> m_indexes;
};

} // namespace engine
