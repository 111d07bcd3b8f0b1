// Any text through lexer, parser and translation: it has to end in a plan or in a failure of the engine.
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/Plan.h"
#include "platform/runtime/Failure.h"
#include "tests/fuzz/Fuzz.h"

#include <algorithm>

namespace {

using namespace engine;
using namespace engine::sql;
using fuzz::Require;

class FuzzCatalog : public Catalog {
public:
    FuzzCatalog() {
        TableInfo people;
        people.name = QStringLiteral("a01");
        AddColumn(people, "a01clid", DataType::Long);
        AddColumn(people, "a01last", DataType::Text);
        people.indexes = {{QStringLiteral("pk"), {QStringLiteral("a01clid")}, true, true, false}};
        TableInfo odd;
        odd.name = QStringLiteral("b");
        AddColumn(odd, "n", DataType::Counter);
        AddColumn(odd, "d", DataType::Date);
        AddColumn(odd, "f", DataType::Double);
        AddColumn(odd, "t", DataType::Bit);
        m_tables = {people, odd};
    }

    const TableInfo* FindTable(QStringView name) const override {
        const auto found = std::ranges::find_if(
            m_tables, [&](const TableInfo& table) { return SameName(table.name, name); });
        return found == m_tables.end() ? nullptr : &*found;
    }

private:
    static void AddColumn(TableInfo& table, const char* name, DataType type) {
        ColumnInfo column;
        column.name = QString::fromLatin1(name);
        column.type = type;
        column.size = type == DataType::Text ? 50 : 0;
        table.columns.push_back(column);
    }
    std::vector<TableInfo> m_tables;
};

void CheckPlan(const Scanned& scanned, const Plan& plan) {
    for (const Parameter& parameter : plan.parameters)
        Require(parameter.literal >= 0 && parameter.literal < static_cast<int>(scanned.literals.size()));
    Require(plan.verb == Verb::Schema || !plan.text.isEmpty() || !plan.headingsText.isEmpty());
    Require(!plan.text.contains(QChar(u'\0')));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzCatalog catalog;
    static const std::vector<ResultColumn> columns = {{QStringLiteral("a01clid"), DataType::Long},
                                                      {QStringLiteral("a01last"), DataType::Text},
                                                      {QStringLiteral("b.d"), DataType::Date}};
    const QString text = QString::fromUtf8(fuzz::Bytes(data, size));
    Scanned scanned;
    try {
        scanned = Scan(text);
    } catch (const runtime::Failure&) {
        return 0; // too long
    }
    for (const Purpose purpose : {Purpose::OpenRecordset, Purpose::Execute}) {
        try {
            CheckPlan(scanned, Translate(scanned, catalog, purpose));
        } catch (const runtime::Failure& failure) {
            Require(!failure.description().isEmpty());
        }
    }
    try {
        TranslateCriteria(scanned, columns);
    } catch (const runtime::Failure&) {
    }
    return 0;
}
