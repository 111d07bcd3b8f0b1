#include "platform/engine/EngineError.h"
#include "tests/engine/functions/Scratch.h"

#include <gtest/gtest.h>

using engine::DataType;
using engine::Value;

namespace {

struct Assignment {
    Value value;
    DataType type;
    int size;
    Value stored;
    int failure = 0;
};

Value Text(const char* text) {
    return QString::fromUtf8(text);
}

} // namespace

TEST(ToColumn, ConvertsOrNamesTheReason) {
    using enum DataType;
    const int kind = engine::TypeMismatchInCriteria;
    const int range = engine::NumberOutOfRange;
    const Assignment rows[] = {
        {Value(), Text, 5, Value()},
        {Value(255), Byte, 0, Value(255)},
        {Value(256), Byte, 0, {}, range},
        {Value(-1), Byte, 0, {}, range},
        {Value(300), Byte, 0, {}, range},
        {Value(2.5), Short, 0, Value(2)},
        {Value(70000), Short, 0, {}, range},
        {Value(-32768), Short, 0, Value(-32768)},
        {Value(std::int64_t{2147483648}), Long, 0, {}, range},
        {Value(1e300), Long, 0, {}, range},
        {Value(2147483647.4), Counter, 0, Value(2147483647)},
        {::Text("3"), Long, 0, Value(3)},
        {::Text(" 3 "), Long, 0, Value(3)},
        {::Text("2,5"), Long, 0, Value(2)},
        {::Text("2.5"), Long, 0, {}, kind},
        {::Text(""), Long, 0, {}, kind},
        {::Text("abc"), Long, 0, {}, kind},
        {::Text("1E999"), Long, 0, {}, range},
        {Value(true), Long, 0, Value(-1)},
        {Value(QByteArray("ab")), Long, 0, {}, kind},
        {Value(-1), Bit, 0, Value(true)},
        {Value(0.0), Bit, 0, Value(false)},
        {Value(1e39), Single, 0, {}, range},
        {Value(0.1), Single, 0, Value(static_cast<double>(0.1F))},
        {Value(9e200), Double, 0, Value(9e200)},
        {Value(1.23456), Currency, 0, Value(engine::Money{12346})},
        {::Text("922337203685477,5807"), Currency, 0, Value(engine::Money{9223372036854775807})},
        {::Text("1,5"), Currency, 15, Value(1.5)}, // kept as a fraction
        {::Text("x"), Currency, 0, {}, kind},
        {Value(1e15), Currency, 0, {}, range},
        {::Text("05.12.2006"), Date, 0, Value(39056.0)},
        {Value(QDateTime(QDate(2006, 12, 5), QTime(12, 0), Qt::UTC)), Date, 0, Value(39056.5)},
        {::Text("30.02.2006"), Date, 0, {}, kind},
        {Value(1e9), Date, 0, {}, range},
        {::Text("абвгд"), DataType::Text, 5, ::Text("абвгд")},
        {::Text("абвгде"), DataType::Text, 5, {}, engine::ValueTooLong},
        {::Text("абвгде"), Memo, 0, ::Text("абвгде")},
        {Value(12), DataType::Text, 5, ::Text("12")},
        {Value(0.5), DataType::Text, 5, ::Text("0,5")},
        {Value(true), DataType::Text, 5, ::Text("-1")},
        {Value(123456), DataType::Text, 5, {}, engine::ValueTooLong},
        {Value(QByteArray("abc")), Binary, 2, {}, engine::ValueTooLong},
        {Value(5), Binary, 2, {}, kind},
    };
    int place = 0;
    for (const Assignment& row : rows) {
        SCOPED_TRACE(place++);
        int failure = 0;
        Value stored;
        try {
            stored = engine::functions::ToColumn(row.value, row.type, row.size);
        } catch (const runtime::Failure& raised) {
            failure = raised.number();
        }
        EXPECT_EQ(failure, row.failure);
        EXPECT_TRUE(stored == row.stored) << stored.Text().toStdString();
    }
}

TEST(ToColumn, InAStatement) {
    test::Scratch scratch;
    const int text = static_cast<int>(DataType::Text);
    const int byte = static_cast<int>(DataType::Byte);
    const auto ask = [&scratch](int type, int size, const char* rest) {
        return scratch.Ask(
            QStringLiteral("SELECT zv_to(%1, %2, %3)").arg(type).arg(size).arg(QString::fromUtf8(rest)));
    };
    EXPECT_EQ(ask(text, 3, "'t.c', 'абв'"), "абв");
    EXPECT_EQ(ask(text, 3, "'t.c', 'абвг'"), "#3163");
    EXPECT_EQ(ask(byte, 0, "'t.c', 300"), "#3349");
    EXPECT_EQ(ask(byte, 0, "'t.c', 'x'"), "#3464");
    // Statements that pass over failures store NULL instead.
    EXPECT_EQ(ask(byte, 0, "NULL, 'x'"), "NULL");
    EXPECT_EQ(ask(byte, 0, "NULL, '7'"), "7");
}
