#include "platform/engine/Value.h"

#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"

#include <cstring>
#include <limits>

namespace engine {

namespace {

constexpr int digitsOfSingle = 7;

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

} // namespace

bool Value::IsFilled() const {
    if (const auto* text = std::get_if<QString>(&m_data))
        return !text->isEmpty();
    if (const auto* bytes = std::get_if<QByteArray>(&m_data))
        return !bytes->isEmpty();
    return !IsNull();
}

bool Value::IsNumeric() const {
    if (As<QDateTime>())
        return false;
    try {
        Number();
        return true;
    } catch (const runtime::Failure&) {
        return false;
    }
}

QString Value::Text() const {
    return std::visit(Overloaded{
                          [](std::monostate) { return QString(); },
                          [](std::int64_t number) { return QString::number(number); },
                          [](double number) { return runtime::NumberToText(number); },
                          [](float number) { return runtime::NumberToText(number, digitsOfSingle); },
                          [](engine::Money amount) { return amount.Text(); },
                          [](const QString& text) { return text; },
                          [](const QDateTime& date) { return runtime::DateToText(date); },
                          [](bool truth) { return truth ? QStringLiteral("-1") : QStringLiteral("0"); },
                          [](const QByteArray& bytes) {
                              // Bytes read as text are UTF-16, as everywhere in the engine.
                              QString text(bytes.size() / 2, Qt::Uninitialized);
                              std::memcpy(text.data(), bytes.constData(),
                                          static_cast<std::size_t>(text.size()) * 2);
                              return text;
                          },
                      },
                      m_data);
}

std::int32_t Value::Long() const {
    return runtime::RoundedTo<std::int32_t>(Number());
}

double Value::Number() const {
    return std::visit(Overloaded{
                          [](std::monostate) -> double { runtime::Raise(runtime::InvalidUseOfNull); },
                          [](std::int64_t number) { return static_cast<double>(number); },
                          [](double number) { return number; },
                          [](float number) { return static_cast<double>(number); },
                          [](engine::Money amount) { return amount.Number(); },
                          [](const QString& text) { return runtime::TextToNumber(text); },
                          [](const QDateTime& date) { return runtime::NumberFromDate(date); },
                          [](bool truth) { return truth ? -1.0 : 0.0; },
                          [](const QByteArray&) -> double { runtime::Raise(runtime::TypeMismatch); },
                      },
                      m_data);
}

engine::Money Value::Money() const {
    if (const auto* amount = std::get_if<engine::Money>(&m_data))
        return *amount;
    if (const auto* whole = std::get_if<std::int64_t>(&m_data))
        return engine::Money::FromWhole(*whole);
    const double number = Number();
    if (const auto* text = std::get_if<QString>(&m_data)) {
        QString digits = *text;
        digits.removeIf([](QChar c) { return c.isSpace(); }); // a number holds them between thousands alone
        if (const auto amount = engine::Money::FromDigits(digits, u','))
            return *amount;
    }
    return engine::Money::FromNumber(number);
}

} // namespace engine
