#pragma once

#include "platform/engine/Money.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <cstdint>
#include <variant>

namespace engine {

/// Type of a column or of a value, by the engine's names.
enum class DataType : std::uint8_t {
    Unknown, ///< an expression whose type only its rows tell
    Bit,
    Byte,
    Short,
    Long,
    Counter, ///< Long, generated
    Single,
    Double,
    Currency,
    Date,
    Text,
    Memo,
    Binary,
    Guid,
};

/// One value of a row: NULL, a whole number, a fraction (a double, or a float of type SINGLE), an amount of
/// money, a text, a date, a truth or bytes.
class Value {
public:
    Value() = default; ///< NULL
    Value(std::int64_t number)
        : m_data(number) {}
    Value(int number)
        : m_data(std::int64_t{number}) {}
    Value(double number)
        : m_data(number) {}
    Value(float number)
        : m_data(number) {}
    Value(engine::Money amount)
        : m_data(amount) {}
    Value(QString text)
        : m_data(std::move(text)) {}
    Value(QDateTime date)
        : m_data(std::move(date)) {}
    Value(bool truth)
        : m_data(truth) {}
    Value(QByteArray bytes)
        : m_data(std::move(bytes)) {}

    bool IsNull() const { return std::holds_alternative<std::monostate>(m_data); }
    /// Neither NULL nor the empty text: what the windows ask before they show a value.
    bool IsFilled() const;
    /// Whether the value reads as a number (a number, or a text of one).
    bool IsNumeric() const;

    /// The text that `&` would join: NULL gives the empty text, numbers with a decimal comma (those of type
    /// SINGLE to 7 digits), dates in short form.
    QString Text() const;
    /// The whole number; failure 94 on NULL, 13 on a text that is none, 6 beyond 32 bits.
    std::int32_t Long() const;
    /// The number; failures as Long.
    double Number() const;
    /// The amount, exact if it is one or the text of one; failures as Long, 6 beyond the range of CURRENCY.
    engine::Money Money() const;

    /// What is held, if it is a T of the list below; else null.
    template <class T>
    const T* As() const {
        return std::get_if<T>(&m_data);
    }

    friend bool operator==(const Value&, const Value&) = default;

private:
    friend class Recordset;
    std::variant<std::monostate, std::int64_t, double, float, engine::Money, QString, QDateTime, bool,
                 QByteArray>
        m_data;
};

} // namespace engine
