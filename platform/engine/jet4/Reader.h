#pragma once

#include "platform/engine/Value.h"
#include "platform/engine/jet4/Image.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace engine::jet4 {

/// A column of a table, and where its values lie in a row.
struct Column {
    QString name;
    /// The type that takes its values here; Unknown where there is none.
    DataType type = DataType::Unknown;
    int size = 0; ///< characters of a text, bytes of a short binary; else 0

    std::uint16_t number = 0; ///< its bit in the null mask
    bool fixed = false;
    std::uint16_t offset = 0;   ///< of a fixed column, among the fixed data
    std::uint16_t length = 0;   ///< of a fixed column, bytes
    std::uint16_t variable = 0; ///< of a variable column, its place among them
};

/// Where a row stands: the page and its place there.
struct RowPlace {
    std::uint32_t page = 0;
    std::uint32_t row = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): the check misreads the comparison.
    friend auto operator<=>(const RowPlace&, const RowPlace&) = default;
};

class RowParts;

struct Table {
    QString name;
    std::uint32_t definition = 0; ///< its page
    std::uint32_t rowCount = 0;
    std::uint32_t indexCount = 0;
    std::uint16_t variableColumns = 0;
    RowPlace ownedPages; ///< of the map of its pages
    std::vector<Column> columns;

    /// By name, case ignored; -1 if there is none.
    int Find(QStringView column) const;
};

/// Reads a database file of the format Jet 4.0. The file is taken for hostile: every number is checked, every
/// chain bounded, the memory bounded by the size of the file, which is read once, at the start. Whatever
/// contradicts itself is failure 3049; nothing is left out in silence.
class Reader {
public:
    /// Whether a plain file with the header of this format stands at the path. Reads its first bytes alone.
    static bool IsOldFormat(const QString& path);

    /// Reads the file and its catalog. Failures: 3024 missing, 3051 no right to it, 3043 the disk fails, 3343
    /// another format, 3031 a password, 3049 damaged.
    explicit Reader(const QString& path);
    /// The same over bytes that the caller holds.
    Reader(QByteArray bytes, QString path);

    /// The user's tables, in the order of the catalog.
    const std::vector<Table>& Tables() const { return m_tables; }
    /// By name, case ignored; null if there is none.
    const Table* Find(QStringView table) const;
    /// Names of what is no table: queries and links to other files.
    const QStringList& OtherObjects() const { return m_others; }

    /// The rows of a table, every one exactly once, in the order of the file. Failure 3049 if they are not as
    /// many as the table says.
    std::vector<RowPlace> Rows(const Table& table) const;
    /// The values of a row, one for each column; NULL for columns of an Unknown type. Failure 3049.
    void Read(const Table& table, RowPlace place, std::vector<Value>& values) const;

private:
    struct Row {
        Bytes bytes;
        std::uint16_t flags = 0;
    };

    template <class Action>
    auto Guarded(Action action) const;

    Bytes PageOf(std::uint32_t page, std::uint8_t type) const;
    Row RowAt(RowPlace place) const;
    RowPlace Follow(const Table& table, Bytes pointer) const;

    Table ReadDefinition(std::uint32_t page);
    static Column ReadColumn(Bytes definition);
    Bytes DefinitionPageOf(std::uint32_t page);
    QByteArray DefinitionBytes(std::uint32_t page);
    void ReadCatalog();

    template <class Visit>
    void ForEachOwnedPage(const Table& table, Visit visit) const;
    void AddRows(const Table& table, std::uint32_t page, std::vector<RowPlace>& places) const;
    std::vector<RowPlace> RowsOf(const Table& table) const;
    void ReadRow(const Table& table, RowPlace place, std::vector<Value>& values) const;
    Value ReadValue(const Column& column, const RowParts& parts) const;
    QByteArray ReadLong(Bytes value) const;

    QString m_path;
    Image m_image;
    std::vector<bool> m_definitionPages; ///< those that a definition has taken: none serves two
    std::vector<Table> m_tables;
    QStringList m_others;
};

} // namespace engine::jet4
