#pragma once

#include "platform/engine/jet4/Reader.h"
#include "tests/support/Expect.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QtEndian>

#include <iterator>
#include <stdexcept>

namespace test {

inline QString OldFile(const QString& name) {
    return QStringLiteral(ZAVELIK_TEST_DATA "/jet/") + name;
}

/// The rows that the sound files hold, by file and table.
inline QJsonObject ExpectedRows() {
    const QJsonDocument document =
        QJsonDocument::fromJson(ReadBytes(OldFile(QStringLiteral("expected.json"))));
    EXPECT_TRUE(document.isObject());
    return document.object();
}

/// The bytes of a sound file, to be changed where a table, a column or a row stands.
class OldBytes {
public:
    explicit OldBytes(const char* file)
        : m_bytes(ReadBytes(OldFile(QString::fromUtf8(file))))
        , m_sound(m_bytes, QString()) {}

    const QByteArray& Bytes() const { return m_bytes; }
    const engine::jet4::Table& Table(const char16_t* name) const { return *m_sound.Find(name); }

    qsizetype Definition(const char16_t* table) const {
        return qsizetype{Table(table).definition} * pageSize;
    }
    /// The entry of a column in the definition.
    qsizetype Column(const char16_t* table, const char16_t* column) const {
        return Definition(table) + 63 + 12 * qsizetype{Table(table).indexCount} +
               25 * Table(table).Find(column);
    }
    /// The first byte of a table's row, by its place in the file.
    qsizetype Row(const char16_t* table, int place) const {
        qsizetype found = -1;
        m_sound.ForEachPlace(Table(table), [&](engine::jet4::RowPlace row) {
            if (place-- == 0)
                found = RowAt(row.page, row.row);
        });
        return found >= 0 ? found : throw std::out_of_range("row");
    }
    /// The table's row in the catalog.
    qsizetype CatalogRow(const char16_t* table) const {
        for (std::uint32_t page = 1; page * pageSize < m_bytes.size(); ++page) {
            if (m_bytes[page * pageSize] != 1 || U32(page * pageSize + 4) != 2)
                continue;
            for (std::uint32_t row = 0; row < U16(page * pageSize + 12); ++row) {
                if ((U16(page * pageSize + 14 + 2 * row) & 0x4000) == 0 &&
                    U32(RowAt(page, row) + 2) == Table(table).definition)
                    return RowAt(page, row);
            }
        }
        throw std::out_of_range("catalog");
    }
    /// The u16 at `place` before the mask of a row with up to eight columns.
    qsizetype Trailer(const char16_t* table, int row, qsizetype place) const {
        return m_rowEnds[Row(table, row)] - 1 - place;
    }

    std::uint16_t U16(qsizetype place) const {
        return qFromLittleEndian<std::uint16_t>(m_bytes.data() + place);
    }
    std::uint32_t U32(qsizetype place) const {
        return qFromLittleEndian<std::uint32_t>(m_bytes.data() + place);
    }
    template <class Number>
    void Put(qsizetype place, Number number) {
        qToLittleEndian(number, m_bytes.data() + place);
    }
    void Add(qsizetype place, int difference) {
        Put(place, static_cast<std::uint16_t>(U16(place) + difference));
    }
    /// Another text of the same length, at its first place behind `from`.
    void Replace(qsizetype from, const QString& text, const QString& other) {
        const qsizetype full = m_bytes.indexOf(Form(text, false), from);
        const qsizetype half = m_bytes.indexOf(Form(text, true), from);
        const bool compressed = full < 0 || (half >= 0 && half < full);
        const qsizetype place = compressed ? half : full;
        if (place < 0)
            throw std::out_of_range("text");
        m_bytes.replace(place, Form(text, compressed).size(), Form(other, compressed));
    }
    /// Another name of any length for a column.
    void Rename(const char16_t* table, const QString& column, const QString& name) {
        const auto sized = [](const QString& text) {
            QByteArray form = Form(text, false);
            const auto size = static_cast<char>(form.size());
            return form.prepend(QByteArray(1, '\0')).prepend(size);
        };
        QByteArray page = m_bytes.mid(Definition(table), pageSize);
        page.replace(sized(column), sized(name));
        m_bytes.replace(Definition(table), pageSize, page.append(pageSize, '\0').first(pageSize));
    }

private:
    static constexpr qsizetype pageSize = 4096;

    static QByteArray Form(const QString& text, bool compressed) {
        return compressed ? text.toLatin1()
                          : QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    }
    qsizetype RowAt(std::uint32_t page, std::uint32_t row) const {
        const qsizetype start = qsizetype{page} * pageSize;
        const auto offset = [&](std::uint32_t place) { return U16(start + 14 + 2 * place) & 0x1FFF; };
        const qsizetype found = start + offset(row);
        m_rowEnds[found] = start + (row == 0 ? pageSize : offset(row - 1));
        return found;
    }

    QByteArray m_bytes;
    engine::jet4::Reader m_sound;
    mutable QHash<qsizetype, qsizetype> m_rowEnds;
};

} // namespace test
