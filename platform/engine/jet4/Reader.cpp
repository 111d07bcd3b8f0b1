#include "platform/engine/jet4/Reader.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/jet4/RowParts.h"
#include "platform/engine/schema/Names.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace engine::jet4 {

namespace {

constexpr std::uint32_t catalogPage = 2;

// Limits of the format.
constexpr std::uint32_t mostColumns = 255;
constexpr std::uint32_t mostDefinitionPages = 64;

// A table's definition.
constexpr std::uint32_t nextPagePlace = 4;
constexpr std::uint32_t rowCountPlace = 16;
constexpr std::uint32_t columnsEverPlace = 41;
constexpr std::uint32_t variableColumnsPlace = 43;
constexpr std::uint32_t columnsPlace = 45;
constexpr std::uint32_t indexesPlace = 51;
constexpr std::uint32_t ownedPagesPlace = 55;
constexpr std::uint32_t firstIndexPlace = 63;
constexpr std::uint32_t indexLength = 12;
constexpr std::uint32_t columnLength = 25;
constexpr std::uint32_t continuationPlace = 8;

// A catalog row of what does not belong to the user.
constexpr std::uint32_t systemFlags = 0x80000002;
enum ObjectType : std::int64_t {
    TableObject = 1,
    DatabaseObject = 2,
    ContainerObject = 3,
    RelationObject = 8,
};

bool IsSoundName(const QString& name) {
    return !name.isEmpty() && IsValidName(name);
}

std::unique_ptr<QIODevice> OpenFile(const QString& path) {
    if (!QFileInfo(path).isFile())
        RaiseEngine(FileNotFound, path);
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        RaiseEngine(CannotOpenFile, path);
    return file;
}

std::unique_ptr<QIODevice> OpenBytes(const QByteArray& bytes) {
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(bytes);
    buffer->open(QIODevice::ReadOnly);
    return buffer;
}

void Take(std::vector<bool>& places, std::uint32_t first, std::uint32_t count) {
    for (std::uint32_t place = first; place < first + count; ++place) {
        if (place >= places.size() || places[place])
            throw Damage();
        places[place] = true;
    }
}

/// Every column has its places to itself, and they are of the table.
void CheckColumns(const Table& table) {
    std::vector<bool> numbers(table.columnsEver);
    std::vector<bool> fixed(Image::pageSize);
    std::vector<bool> variable(table.variableColumns);
    QSet<QString> names;
    for (const Column& column : table.columns) {
        names.insert(column.name.toLower());
        Take(numbers, column.number, 1);
        if (!column.fixed)
            Take(variable, column.variable, 1);
        else if (column.type != DataType::Bit)
            Take(fixed, column.offset, column.length);
        if (!IsSoundName(column.name))
            throw Damage();
    }
    if (names.size() != static_cast<qsizetype>(table.columns.size()))
        throw Damage();
}

} // namespace

int Table::Find(QStringView column) const {
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [column](const Column& known) { return SameName(column, known.name); });
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

bool Reader::IsOldFormat(const QString& path) {
    if (!QFileInfo(path).isFile())
        return false;
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) &&
           Image::HasHeader(file.read(Image::headerSize));
}

Reader::Reader(const QString& path)
    : Reader(OpenFile(path), path) {
}

Reader::Reader(const QByteArray& bytes, QString path)
    : Reader(OpenBytes(bytes), std::move(path)) {
}

Reader::Reader(std::unique_ptr<QIODevice> device, QString path)
    : m_image(std::move(device), std::move(path))
    , m_definitionPages(m_image.PageCount()) {
    m_image.Guarded([this] { ReadCatalog(); });
}

const Table* Reader::Find(QStringView table) const {
    const auto found = std::find_if(m_tables.begin(), m_tables.end(),
                                    [table](const Table& known) { return SameName(table, known.name); });
    return found == m_tables.end() ? nullptr : &*found;
}

Bytes Reader::DefinitionPageOf(std::uint32_t page) {
    Bytes bytes = m_image.Page(page, PageType::Definition);
    if (m_definitionPages.at(page))
        throw Damage();
    m_definitionPages[page] = true;
    return bytes;
}

/// A definition with its continuations, as one run of bytes.
QByteArray Reader::DefinitionBytes(std::uint32_t page) {
    QByteArray bytes = DefinitionPageOf(page).View().toByteArray();
    std::uint32_t pages = 1;
    for (std::uint32_t next = Bytes(bytes).U32(nextPagePlace); next != 0;) {
        if (++pages > mostDefinitionPages)
            throw Damage();
        const Bytes more = DefinitionPageOf(next);
        bytes += more.From(continuationPlace).View();
        next = more.U32(nextPagePlace);
    }
    return bytes;
}

Table Reader::ReadDefinition(std::uint32_t page) {
    const QByteArray held = DefinitionBytes(page);
    const Bytes definition(held);
    Table table;
    table.definition = page;
    table.rowCount = definition.U32(rowCountPlace);
    table.columnsEver = definition.U16(columnsEverPlace);
    table.variableColumns = definition.U16(variableColumnsPlace);
    table.ownedPages = PlaceIn(definition.From(ownedPagesPlace));
    const std::uint32_t count = definition.U16(columnsPlace);
    if (count == 0 || table.columnsEver > mostColumns || table.variableColumns > mostColumns)
        throw Damage();
    table.indexCount = definition.U32(indexesPlace);
    const std::uint64_t first = firstIndexPlace + std::uint64_t{indexLength} * table.indexCount;
    Bytes names = definition.From(first + std::uint64_t{columnLength} * count);
    for (std::uint32_t i = 0; i < count; ++i) {
        Column column = ReadColumn(definition.Part(first + std::uint64_t{columnLength} * i, columnLength));
        const std::uint16_t length = names.U16(0);
        column.name = DecodeText(names.Part(2, length));
        names = names.From(std::uint64_t{2} + length);
        table.columns.push_back(std::move(column));
    }
    CheckColumns(table);
    return table;
}

void Reader::ReadCatalog() {
    const Table catalog = ReadDefinition(catalogPage);
    const auto place = [&catalog](QStringView name) {
        const int found = catalog.Find(name);
        if (found < 0)
            throw Damage();
        return static_cast<std::size_t>(found);
    };
    const std::size_t idPlace = place(u"Id");
    const std::size_t namePlace = place(u"Name");
    const std::size_t typePlace = place(u"Type");
    const std::size_t flagsPlace = place(u"Flags");
    ForEachRow(catalog, [&](const std::vector<Value>& values) {
        const auto* id = values[idPlace].As<std::int64_t>();
        const auto* name = values[namePlace].As<QString>();
        const auto* type = values[typePlace].As<std::int64_t>();
        const auto* flags = values[flagsPlace].As<std::int64_t>();
        if (!id || !name || !type)
            throw Damage();
        AddObject(*id, *type, flags && (static_cast<std::uint32_t>(*flags) & systemFlags) != 0, *name);
    });
}

void Reader::AddObject(std::int64_t id, std::int64_t type, bool isSystem, const QString& name) {
    // What the engine keeps of deleted tables.
    if (name.startsWith(QLatin1String("~TMPCLP")))
        return;
    if (type == TableObject && !isSystem) {
        if (!IsSoundName(name) || Find(name))
            throw Damage();
        m_tables.push_back(ReadDefinition(static_cast<std::uint32_t>(id) & 0xFFFFFFU));
        m_tables.back().name = name;
        return;
    }
    const bool isEngines = type == TableObject ? name.startsWith(QLatin1String("MSys"), Qt::CaseInsensitive)
                                               : isSystem || name.startsWith(u'~');
    const bool isKnown =
        type < 0 || type == DatabaseObject || type == ContainerObject || type == RelationObject;
    if (!isEngines && !isKnown)
        m_others += name;
}

} // namespace engine::jet4
