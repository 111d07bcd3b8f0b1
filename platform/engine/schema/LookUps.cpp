#include "platform/engine/schema/LookUps.h"

#include "platform/engine/schema/Names.h"

#include <algorithm>

namespace engine {

namespace {

/// Two points: no index of the dialect bears such a name.
QString NamePrefix(QStringView table) {
    return table.toString() + QLatin1String("..");
}

} // namespace

QString LookUp::IndexName(const TableInfo& of) const {
    return NamePrefix(of.name) + columns.front();
}

/// SQLite takes an index with a condition for nothing but statements that say the same, as those do whose way
/// it is to be.
QString LookUp::CreateText(const TableInfo& of) const {
    QStringList names;
    for (const QString& column : columns) {
        const int place = of.Find(column);
        if (place < 0)
            return {};
        names += of.At(place).name;
    }
    return QStringLiteral("CREATE INDEX %1 ON %2 (%3) WHERE %4 = %4")
        .arg(QuoteName(IndexName(of)), QuoteName(of.name), QuoteNames(names), QuoteName(names.front()));
}

std::vector<LookUp>& LookUps() {
    static std::vector<LookUp> lookUps;
    return lookUps;
}

bool BeginsLookUp(const TableInfo& table, const ColumnInfo& column) {
    return std::ranges::any_of(LookUps(), [&](const LookUp& lookUp) {
        return SameName(lookUp.table, table.name) && SameName(lookUp.columns.front(), column.name);
    });
}

bool IsLookUp(QStringView table, QStringView index) {
    return index.startsWith(NamePrefix(table));
}

} // namespace engine
