// Where the rows of a table stand.

#include "platform/engine/jet4/Reader.h"

#include <algorithm>

namespace engine::jet4 {

namespace {

/// The pages of a table, ascending, as its map names them.
class OwnedPages {
public:
    OwnedPages(const Image& image, RowPlace place)
        : m_image(image) {
        constexpr std::uint32_t mapHeader = 4;
        constexpr std::uint64_t pagesOfMap = std::uint64_t{Image::pageSize - mapHeader} * 8;
        const Bytes map = m_image.RowAt(place).bytes;
        switch (map.U8(0)) {
        case 0:
            Add(map.From(5), map.U32(1));
            break;
        case 1:
            for (std::uint32_t at = 1, i = 0; at + 4 <= map.Size() && i * pagesOfMap < m_image.PageCount();
                 at += 4, ++i) {
                if (const std::uint32_t page = map.U32(at))
                    Add(m_image.Page(page, PageType::Map).From(mapHeader), i * pagesOfMap);
            }
            break;
        default:
            throw Damage();
        }
    }

    auto begin() const { return m_pages.begin(); }
    auto end() const { return m_pages.end(); }

private:
    void Add(const Bytes& bits, std::uint64_t first) {
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

    const Image& m_image;
    std::vector<std::uint32_t> m_pages;
};

} // namespace

void Reader::ForEachPlace(const Table& table, const std::function<void(RowPlace)>& visit) const {
    m_image.Guarded([&] {
        std::uint32_t left = table.rowCount;
        std::vector<RowPlace> moved; // to where pointers have led
        for (const std::uint32_t page : OwnedPages(m_image, table.ownedPages)) {
            for (std::uint32_t row = 0, count = RowsOn(table, page); row < count; ++row) {
                RowPlace place{page, row};
                const Row found = m_image.RowAt(place);
                if (found.deleted)
                    continue;
                if (found.pointer) {
                    place = Follow(table, found.bytes);
                    moved.push_back(place);
                }
                if (left-- == 0)
                    throw Damage();
                visit(place);
            }
        }
        std::ranges::sort(moved);
        if (left != 0 || std::ranges::adjacent_find(moved) != moved.end())
            throw Damage();
    });
}

/// None on a page that is another's or spoilt: its rows will be missing from the count.
std::uint32_t Reader::RowsOn(const Table& table, std::uint32_t page) const {
    const Bytes bytes = m_image.Page(page);
    const bool isOurs =
        bytes.U8(0) == static_cast<std::uint8_t>(PageType::Data) && bytes.U32(ownerPlace) == table.definition;
    return isOurs ? bytes.U16(rowsPlace) : 0;
}

/// The place that a moved row's pointer leads to.
RowPlace Reader::Follow(const Table& table, const Bytes& pointer) const {
    const RowPlace target = PlaceIn(pointer);
    const Row row = m_image.RowAt(target);
    if (!row.deleted || row.pointer || m_image.Page(target.page).U32(ownerPlace) != table.definition)
        throw Damage();
    return target;
}

} // namespace engine::jet4
