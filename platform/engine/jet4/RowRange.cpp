#include "platform/engine/jet4/RowRange.h"

#include "platform/engine/jet4/Reader.h"

#include <algorithm>

namespace engine::jet4 {

RowRange::RowRange(const Image& image, const Table& table)
    : m_image(image)
    , m_table(table) {
    m_image.Guarded([this] { ReadMap(); });
}

void RowRange::ReadMap() {
    constexpr std::uint32_t mapHeader = 4;
    constexpr std::uint64_t pagesOfMap = std::uint64_t{Image::pageSize - mapHeader} * 8;
    const Bytes map = m_image.RowAt(m_table.ownedPages).bytes;
    switch (map.U8(0)) {
    case 0:
        AddPages(map.From(5), map.U32(1));
        break;
    case 1:
        for (std::uint32_t place = 1, i = 0; place + 4 <= map.Size() && i * pagesOfMap < m_image.PageCount();
             place += 4, ++i) {
            if (const std::uint32_t page = map.U32(place))
                AddPages(m_image.Page(page, PageType::Map).From(mapHeader), i * pagesOfMap);
        }
        break;
    default:
        throw Damage();
    }
}

void RowRange::AddPages(const Bytes& bits, std::uint64_t first) {
    for (std::uint32_t byte = 0; byte < bits.Size(); ++byte) {
        const unsigned eight = bits.U8(byte);
        for (unsigned bit = 0; eight != 0 && bit < 8; ++bit) {
            if (!(eight & (1U << bit)))
                continue;
            const std::uint64_t page = first + std::uint64_t{byte} * 8 + bit;
            if (page >= m_image.PageCount())
                throw Damage();
            m_pages.push_back(static_cast<std::uint32_t>(page));
        }
    }
}

void RowRange::Advance() {
    m_image.Guarded([this] {
        m_ended = !FindNext();
        if (m_ended)
            CheckEnd();
        else if (++m_count > m_table.rowCount)
            throw Damage();
    });
}

bool RowRange::FindNext() {
    for (; m_page < m_pages.size(); ++m_page, m_row = 0) {
        const std::uint32_t page = m_pages[m_page];
        for (const std::uint32_t count = RowsOn(page); m_row < count;) {
            m_place = {page, m_row++};
            const Row row = m_image.RowAt(m_place);
            if (row.deleted)
                continue;
            if (row.pointer) {
                m_place = Follow(row.bytes);
                m_moved.push_back(m_place);
            }
            return true;
        }
    }
    return false;
}

/// None on a page that is another's or spoilt: its rows will be missing from the count.
std::uint32_t RowRange::RowsOn(std::uint32_t page) const {
    const Bytes bytes = m_image.Page(page);
    const bool isOurs = bytes.U8(0) == static_cast<std::uint8_t>(PageType::Data) &&
                        bytes.U32(ownerPlace) == m_table.definition;
    return isOurs ? bytes.U16(rowsPlace) : 0;
}

/// The place that a moved row's pointer leads to.
RowPlace RowRange::Follow(const Bytes& pointer) const {
    const RowPlace target = PlaceIn(pointer);
    const Row row = m_image.RowAt(target);
    if (!row.deleted || row.pointer || m_image.Page(target.page).U32(ownerPlace) != m_table.definition)
        throw Damage();
    return target;
}

void RowRange::CheckEnd() {
    std::sort(m_moved.begin(), m_moved.end());
    if (m_count != m_table.rowCount || std::adjacent_find(m_moved.begin(), m_moved.end()) != m_moved.end())
        throw Damage();
}

} // namespace engine::jet4
