#pragma once

#include <QByteArray>

#include <algorithm>
#include <cstdint>

namespace fuzz {

/// A file with changes made to it. Each change: three bytes of place, one of length, and the new bytes.
inline QByteArray Changed(QByteArray bytes, QByteArrayView changes) {
    constexpr qsizetype head = 4;
    while (changes.size() > head && !bytes.isEmpty()) {
        const auto byte = [&changes](qsizetype i) { return static_cast<std::uint8_t>(changes[i]); };
        const qsizetype place = (byte(0) | (byte(1) << 8) | (byte(2) << 16)) % bytes.size();
        const qsizetype length =
            std::min({qsizetype{byte(3) % 16 + 1}, changes.size() - head, bytes.size() - place});
        std::copy_n(changes.begin() + head, length, bytes.begin() + place);
        changes = changes.sliced(head + length);
    }
    return bytes;
}

} // namespace fuzz
