#include "platform/engine/jet4/Reader.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/jet4/RowParts.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace engine::jet4 {

namespace {

enum PageType : std::uint8_t { DataPage = 1, DefinitionPage = 2, MapPage = 5 };

constexpr std::uint32_t catalogPage = 2;

// Limits of the format.
constexpr std::uint32_t mostColumns = 255;
constexpr int longestName = 64;
constexpr std::uint32_t mostDefinitionPages = 64;
constexpr qint64 largestFile = qint64{1} << 31;

// A table's definition.
constexpr std::uint32_t nextPagePlace = 4;
constexpr std::uint32_t rowCountPlace = 16;
constexpr std::uint32_t variableColumnsPlace = 43;
constexpr std::uint32_t columnsPlace = 45;
constexpr std::uint32_t indexesPlace = 51;
constexpr std::uint32_t ownedPagesPlace = 55;
constexpr std::uint32_t firstIndexPlace = 63;
constexpr std::uint32_t indexLength = 12;
constexpr std::uint32_t columnLength = 25;
constexpr std::uint32_t continuationPlace = 8;

// A page of rows.
constexpr std::uint32_t ownerPlace = 4;
constexpr std::uint32_t rowsPlace = 12;
constexpr std::uint32_t offsetsPlace = 14;
constexpr std::uint16_t offsetMask = 0x1FFF;
constexpr std::uint16_t deletedFlag = 0x8000; // or the target of a pointer
constexpr std::uint16_t pointerFlag = 0x4000;

// A catalog row of what does not belong to the user.
constexpr std::uint32_t systemFlags = 0x80000002;
enum ObjectType : std::int64_t { TableObject = 1, LinkObject = 4, QueryObject = 5, LinkedTableObject = 6 };

bool IsSoundName(const QString& name) {
    return !name.isEmpty() && name.size() <= longestName &&
           std::none_of(name.begin(), name.end(),
                        [](QChar sign) { return sign < u' ' || QStringView(u".![]`").contains(sign); });
}

RowPlace PlaceIn(Bytes pointer) {
    return {pointer.U24(1), pointer.U8(0)};
}

QByteArray ReadFile(const QString& path) {
    if (!QFileInfo(path).isFile())
        RaiseEngine(FileNotFound, path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        RaiseEngine(CannotOpenFile, path);
    if (file.size() > largestFile)
        RaiseEngine(CannotOpenDatabase, path);
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        RaiseEngine(DiskOrNetworkFailure);
    return bytes;
}

/// Checks the header before the rest is looked at.
QByteArray Recognised(QByteArray bytes, const QString& path) {
    if (!Image::HasHeader(bytes))
        RaiseEngine(UnrecognisedFormat, path);
    return bytes;
}

Image ImageOf(QByteArray bytes, const QString& path) {
    try {
        Image image(Recognised(std::move(bytes), path));
        if (image.NeedsPassword())
            throw runtime::Failure(PasswordNeeded,
                                   QStringLiteral("Файл '%1' защищён паролем. Снимите пароль в программе, "
                                                  "которой он был создан, и повторите попытку.")
                                       .arg(path));
        return image;
    } catch (const Damage&) {
        RaiseEngine(CannotOpenDatabase, path);
    }
}

} // namespace

int Table::Find(QStringView column) const {
    const auto found = std::find_if(columns.begin(), columns.end(), [column](const Column& known) {
        return column.compare(known.name, Qt::CaseInsensitive) == 0;
    });
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

template <class Action>
auto Reader::Guarded(Action action) const {
    try {
        return action();
    } catch (const Damage&) {
        RaiseEngine(CannotOpenDatabase, m_path);
    }
}

bool Reader::IsOldFormat(const QString& path) {
    if (!QFileInfo(path).isFile())
        return false;
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) &&
           Image::HasHeader(file.read(Image::headerSize));
}

Reader::Reader(const QString& path)
    : Reader(ReadFile(path), path) {
}

Reader::Reader(QByteArray bytes, QString path)
    : m_path(std::move(path))
    , m_image(ImageOf(std::move(bytes), m_path)) {
    m_definitionPages.resize(m_image.PageCount());
    Guarded([this] { ReadCatalog(); });
}

const Table* Reader::Find(QStringView table) const {
    const auto found = std::find_if(m_tables.begin(), m_tables.end(), [table](const Table& known) {
        return table.compare(known.name, Qt::CaseInsensitive) == 0;
    });
    return found == m_tables.end() ? nullptr : &*found;
}

std::vector<RowPlace> Reader::Rows(const Table& table) const {
    return Guarded([&] { return RowsOf(table); });
}

void Reader::Read(const Table& table, RowPlace place, std::vector<Value>& values) const {
    Guarded([&] { ReadRow(table, place, values); });
}

Bytes Reader::PageOf(std::uint32_t page, std::uint8_t type) const {
    const Bytes bytes = m_image.Page(page);
    if (bytes.U8(0) != type)
        throw Damage();
    return bytes;
}

Reader::Row Reader::RowAt(RowPlace place) const {
    const Bytes page = PageOf(place.page, DataPage);
    const std::uint32_t count = page.U16(rowsPlace);
    if (place.row >= count)
        throw Damage();
    const std::uint16_t entry = page.U16(offsetsPlace + 2 * place.row);
    const std::uint32_t start = entry & offsetMask;
    const std::uint32_t end =
        place.row == 0 ? Image::pageSize : page.U16(offsetsPlace + 2 * (place.row - 1)) & offsetMask;
    if (start < offsetsPlace + 2 * count || start > end)
        throw Damage();
    return {page.Part(start, end - start), static_cast<std::uint16_t>(entry & ~offsetMask)};
}

/// The place that a moved row's pointer leads to.
RowPlace Reader::Follow(const Table& table, Bytes pointer) const {
    const RowPlace target = PlaceIn(pointer);
    const Row row = RowAt(target);
    const bool isTarget = (row.flags & deletedFlag) && !(row.flags & pointerFlag);
    if (!isTarget || m_image.Page(target.page).U32(ownerPlace) != table.definition)
        throw Damage();
    return target;
}

Bytes Reader::DefinitionPageOf(std::uint32_t page) {
    const Bytes bytes = PageOf(page, DefinitionPage);
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
    table.variableColumns = definition.U16(variableColumnsPlace);
    table.ownedPages = PlaceIn(definition.From(ownedPagesPlace));
    const std::uint32_t count = definition.U16(columnsPlace);
    if (count > mostColumns)
        throw Damage();
    table.indexCount = definition.U32(indexesPlace);
    const std::uint64_t first = firstIndexPlace + std::uint64_t{indexLength} * table.indexCount;
    Bytes names = definition.From(first + std::uint64_t{columnLength} * count);
    QSet<QString> namesMet;
    QSet<std::uint16_t> numbersMet;
    for (std::uint32_t i = 0; i < count; ++i) {
        Column column = ReadColumn(definition.Part(first + std::uint64_t{columnLength} * i, columnLength));
        const std::uint16_t length = names.U16(0);
        column.name = DecodeText(names.Part(2, length));
        names = names.From(std::uint64_t{2} + length);
        namesMet.insert(column.name.toLower());
        numbersMet.insert(column.number);
        if (!IsSoundName(column.name) || column.number > mostColumns)
            throw Damage();
        table.columns.push_back(std::move(column));
    }
    if (namesMet.size() != qsizetype{count} || numbersMet.size() != qsizetype{count})
        throw Damage();
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
    QSet<QString> names;
    std::vector<Value> values;
    for (const RowPlace row : RowsOf(catalog)) {
        ReadRow(catalog, row, values);
        const auto* id = values[idPlace].As<std::int64_t>();
        const auto* name = values[namePlace].As<QString>();
        const auto* type = values[typePlace].As<std::int64_t>();
        const auto* flags = values[flagsPlace].As<std::int64_t>();
        if (!id || !name || !type)
            throw Damage();
        // What begins with a tilde is what the engine keeps of deleted objects.
        const bool isUsers = !flags || (static_cast<std::uint32_t>(*flags) & systemFlags) == 0;
        if (!isUsers || name->startsWith(u'~'))
            continue;
        if (*type == TableObject) {
            names.insert(name->toLower());
            if (!IsSoundName(*name) || names.size() == static_cast<qsizetype>(m_tables.size()))
                throw Damage();
            m_tables.push_back(ReadDefinition(static_cast<std::uint32_t>(*id) & 0xFFFFFFU));
            m_tables.back().name = *name;
        } else if (*type == LinkObject || *type == QueryObject || *type == LinkedTableObject) {
            m_others += *name;
        }
    }
}

/// Calls `visit` with every page that the table's map names.
template <class Visit>
void Reader::ForEachOwnedPage(const Table& table, Visit visit) const {
    const auto visitBits = [this, &visit](Bytes bits, std::uint64_t first) {
        for (std::uint32_t byte = 0; byte < bits.Size(); ++byte) {
            const unsigned eight = bits.U8(byte);
            for (unsigned bit = 0; eight != 0 && bit < 8; ++bit) {
                if (!(eight & (1U << bit)))
                    continue;
                const std::uint64_t page = first + std::uint64_t{byte} * 8 + bit;
                if (page >= m_image.PageCount())
                    throw Damage();
                visit(static_cast<std::uint32_t>(page));
            }
        }
    };
    constexpr std::uint32_t mapHeader = 4;
    constexpr std::uint64_t pagesOfMap = std::uint64_t{Image::pageSize - mapHeader} * 8;
    const Bytes map = RowAt(table.ownedPages).bytes;
    switch (map.U8(0)) {
    case 0:
        visitBits(map.From(5), map.U32(1));
        break;
    case 1:
        for (std::uint32_t place = 1, i = 0; place + 4 <= map.Size() && i * pagesOfMap < m_image.PageCount();
             place += 4, ++i) {
            if (const std::uint32_t page = map.U32(place))
                visitBits(PageOf(page, MapPage).From(mapHeader), i * pagesOfMap);
        }
        break;
    default:
        throw Damage();
    }
}

void Reader::AddRows(const Table& table, std::uint32_t page, std::vector<RowPlace>& places) const {
    const Bytes bytes = m_image.Page(page);
    // Another page under the table's name, or one that is spoilt: its rows will be missing from the count.
    if (bytes.U8(0) != DataPage || bytes.U32(ownerPlace) != table.definition)
        return;
    const std::uint32_t count = bytes.U16(rowsPlace);
    for (std::uint32_t row = 0; row < count; ++row) {
        const RowPlace place{page, row};
        const Row found = RowAt(place);
        if (found.flags & deletedFlag)
            continue;
        places.push_back(found.flags & pointerFlag ? Follow(table, found.bytes) : place);
        if (RowAt(places.back()).bytes.Size() < RowParts::leastSize)
            throw Damage();
    }
}

std::vector<RowPlace> Reader::RowsOf(const Table& table) const {
    std::vector<RowPlace> places;
    ForEachOwnedPage(table, [&](std::uint32_t page) {
        AddRows(table, page, places);
        if (places.size() > table.rowCount)
            throw Damage();
    });
    if (!std::is_sorted(places.begin(), places.end()))
        std::sort(places.begin(), places.end());
    if (places.size() != table.rowCount || std::adjacent_find(places.begin(), places.end()) != places.end())
        throw Damage();
    return places;
}

} // namespace engine::jet4
