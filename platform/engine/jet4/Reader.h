#pragma once

#include "platform/engine/jet4/Image.h"
#include "platform/engine/schema/Types.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <vector>

namespace engine::jet4 {

/// A column of a table, with the type that takes its values here, Unknown where there is none, and where they
/// lie in a row.
struct Column : SizedType {
    QString name;
    std::uint8_t valueSize = 0; ///< bytes of a value; 0 if they are not always as many
    std::uint16_t number = 0;   ///< its bit in the null mask
    bool fixed = false;
    std::uint16_t offset = 0;   ///< of a fixed column, among the fixed data
    std::uint16_t length = 0;   ///< of a fixed column, bytes
    std::uint16_t variable = 0; ///< of a variable column, its place among them
};

class RowParts;

struct Table {
    QString name;
    std::uint32_t definition = 0; ///< its page
    std::uint32_t rowCount = 0;
    std::uint32_t indexCount = 0;
    std::uint16_t columnsEver = 0;     ///< those that were taken away counted as well
    std::uint16_t variableColumns = 0; ///< likewise
    RowPlace ownedPages;               ///< of the map of its pages
    std::vector<Column> columns;

    /// By name, case ignored; -1 if there is none.
    int Find(QStringView column) const;
    /// Whether columns were taken away; their values may still lie in the rows.
    bool LacksColumns() const { return columns.size() < columnsEver; }
};

/// Reads a database file of the format Jet 4.0. The file is taken for hostile: every number is checked, every
/// chain bounded, the memory bounded by the size of the file, which is read as it is asked for. Whatever
/// contradicts itself is failure 3049; nothing is left out in silence.
class Reader {
public:
    /// Whether a plain file with the header of this format stands at the path. Reads its first bytes alone.
    static bool IsOldFormat(const QString& path);

    /// Reads the catalog of the file, which stays open. Failures: 3024 missing, 3051 no right to it, 3043 the
    /// disk fails, 3343 another format, 3031 a password, 3049 damaged.
    explicit Reader(const QString& path);
    /// The same over bytes that the caller holds.
    Reader(const QByteArray& bytes, QString path);

    /// The user's tables, in the order of the catalog.
    const std::vector<Table>& Tables() const { return m_tables; }
    /// By name, case ignored; null if there is none.
    const Table* Find(QStringView table) const;
    /// Names of what is no table that can be read: queries, links to other files, tables of other programs.
    const QStringList& OtherObjects() const { return m_others; }

    /// Calls `visit` with the place of each row, every one exactly once, page by page; a moved row comes
    /// where its pointer stands. Failure 3049 where the rows are not as many as the table says.
    void ForEachPlace(const Table& table, const std::function<void(RowPlace)>& visit) const;
    /// The values of a row, one for each column; NULL for columns of an Unknown type. Failure 3049.
    void Read(const Table& table, RowPlace place, std::vector<Value>& values) const;
    /// Calls `visit` with the values of each row.
    template <class Visit>
    void ForEachRow(const Table& table, Visit visit) const {
        std::vector<Value> values;
        ForEachPlace(table, [&](RowPlace place) {
            Read(table, place, values);
            visit(values);
        });
    }

private:
    Reader(std::unique_ptr<QIODevice> device, QString path);

    Table ReadDefinition(std::uint32_t page);
    static Column ReadColumn(const Bytes& definition);
    Bytes DefinitionPageOf(std::uint32_t page);
    QByteArray DefinitionBytes(std::uint32_t page);
    void ReadCatalog();
    void AddObject(std::int64_t id, std::int64_t type, bool isSystem, const QString& name);

    Value ReadValue(const Column& column, const RowParts& parts) const;
    QByteArray ReadLong(const Bytes& value) const;

    Image m_image;
    std::vector<bool> m_definitionPages; ///< those that a definition has taken: none serves two
    std::vector<Table> m_tables;
    QStringList m_others;
};

} // namespace engine::jet4
