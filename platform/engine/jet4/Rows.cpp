// Where the rows of a table stand.

#include "platform/engine/jet4/Reader.h"

#include <algorithm>

namespace engine::jet4 {

namespace {

/// The pages of a table, ascending, as its map names them.
std::vector<std::uint32_t> OwnedPages(const Image& image, RowPlace place) {
    constexpr std::uint32_t mapHeader = 4;
    constexpr std::uint64_t pagesOfMap = std::uint64_t{Image::pageSize - mapHeader} * 8;
    std::vector<std::uint32_t> pages;
    const auto add = [&](const Bytes& bits, std::uint64_t first) {
        for (std::uint64_t bit = 0; bit < std::uint64_t{bits.Size()} * 8; ++bit) {
            if (!(bits.U8(bit / 8) & (1U << bit % 8)))
                continue;
            if (first + bit >= image.PageCount())
                throw Damage();
            pages.push_back(static_cast<std::uint32_t>(first + bit));
        }
    };
    const Bytes map = image.RowAt(place).bytes;
    switch (map.U8(0)) {
    case 0:
        add(map.From(5), map.U32(1));
        break;
    case 1:
        for (std::uint32_t at = 1, i = 0; at + 4 <= map.Size() && i * pagesOfMap < image.PageCount();
             at += 4, ++i) {
            if (const std::uint32_t page = map.U32(at))
                add(image.Page(page, PageType::Map).From(mapHeader), i * pagesOfMap);
        }
        break;
    default:
        throw Damage();
    }
    return pages;
}

/// None on a page that is another's or spoilt: its rows will be missing from the count.
std::uint32_t RowsOn(const Bytes& page, const Table& table) {
    const bool isOurs =
        page.U8(0) == static_cast<std::uint8_t>(PageType::Data) && page.U32(ownerPlace) == table.definition;
    return isOurs ? page.U16(rowsPlace) : 0;
}

/// The place that a moved row's pointer leads to.
RowPlace Follow(const Image& image, const Table& table, const Bytes& pointer) {
    const RowPlace target = PlaceIn(pointer);
    const Row row = image.RowAt(target);
    if (!row.deleted || row.pointer || image.Page(target.page).U32(ownerPlace) != table.definition)
        throw Damage();
    return target;
}

} // namespace

void Reader::ForEachPlace(const Table& table, const std::function<void(RowPlace)>& visit) const {
    m_image.Guarded([&] {
        std::uint32_t left = table.rowCount;
        std::vector<RowPlace> moved; // to where pointers have led
        for (const std::uint32_t page : OwnedPages(m_image, table.ownedPages)) {
            for (std::uint32_t row = 0, count = RowsOn(m_image.Page(page), table); row < count; ++row) {
                RowPlace place{page, row};
                const Row found = m_image.RowAt(place);
                if (found.deleted)
                    continue;
                if (found.pointer) {
                    place = Follow(m_image, table, found.bytes);
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

} // namespace engine::jet4
