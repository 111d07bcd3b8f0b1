#pragma once

#include <QByteArray>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

namespace engine::jet4 {

/// Raised inside the reader where the file contradicts itself; the reader's public functions turn it into
/// failure 3049.
struct Damage {};

/// Bytes of the file, little-endian, or a part of such; they live as long as somebody holds them. Every
/// access is checked.
class Bytes {
public:
    Bytes() = default;
    Bytes(QByteArray held)
        : m_held(std::move(held))
        , m_view(m_held) {}

    std::uint32_t Size() const { return static_cast<std::uint32_t>(m_view.size()); }
    QByteArrayView View() const { return m_view; }

    std::uint8_t U8(std::uint64_t place) const { return Number<std::uint8_t>(place); }
    std::uint16_t U16(std::uint64_t place) const { return Number<std::uint16_t>(place); }
    std::uint32_t U24(std::uint64_t place) const {
        return U16(place) | (static_cast<std::uint32_t>(U8(place + 2)) << 16U);
    }
    std::uint32_t U32(std::uint64_t place) const { return Number<std::uint32_t>(place); }
    std::uint64_t U64(std::uint64_t place) const { return Number<std::uint64_t>(place); }
    double F64(std::uint64_t place) const { return std::bit_cast<double>(U64(place)); }
    float F32(std::uint64_t place) const { return std::bit_cast<float>(U32(place)); }

    Bytes Part(std::uint64_t place, std::uint64_t length) const {
        Check(place, length);
        return {m_held, m_view.sliced(static_cast<qsizetype>(place), static_cast<qsizetype>(length))};
    }
    Bytes From(std::uint64_t place) const {
        Check(place, 0);
        return {m_held, m_view.sliced(static_cast<qsizetype>(place))};
    }
    /// The first `length` bytes. What lies behind them may be padding, but nothing that anybody wrote.
    Bytes Whole(std::uint64_t length) const {
        const QByteArrayView rest = From(length).View();
        if (std::any_of(rest.begin(), rest.end(), [](char byte) { return byte != 0; }))
            throw Damage();
        return Part(0, length);
    }

private:
    Bytes(QByteArray held, QByteArrayView view)
        : m_held(std::move(held))
        , m_view(view) {}
    void Check(std::uint64_t place, std::uint64_t length) const {
        const auto size = static_cast<std::uint64_t>(m_view.size());
        if (place > size || length > size - place)
            throw Damage();
    }
    template <class Integer>
    Integer Number(std::uint64_t place) const {
        Check(place, sizeof(Integer));
        return qFromLittleEndian<Integer>(m_view.data() + place);
    }

    QByteArray m_held; // shared
    QByteArrayView m_view;
};

} // namespace engine::jet4
