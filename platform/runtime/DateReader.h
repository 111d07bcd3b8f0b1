#pragma once

#include <QDateTime>
#include <QString>

#include <array>
#include <optional>

namespace runtime {

/// The forms in which a month is written, January first.
struct MonthForms {
    const char16_t* nominative;
    const char16_t* genitive;
    const char16_t* abbreviated;
};
extern const std::array<MonthForms, 12> Months;

/// Reads a text as a date, a time or both; a date without a year means one of `today`'s year. A day that does
/// not exist is no date, in whatever order it is written.
std::optional<QDateTime> ReadDate(const QString& text, QDate today);

/// Only texts of the plain form `5.12.2006` with a day that exists: quick, for the windows that go through
/// whole tables. Nothing for any other text, which may still be a date.
std::optional<QDateTime> ReadShortDate(QStringView text);

} // namespace runtime
