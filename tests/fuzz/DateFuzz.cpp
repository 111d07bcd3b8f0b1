// Any text as a date: what is recognised lies in the range, and comes back from the text that it is written
// as.
#include "platform/runtime/Dates.h"
#include "platform/runtime/Failure.h"
#include "tests/fuzz/Fuzz.h"

namespace {

using fuzz::Require;

void CheckRange(const QDateTime& value) {
    constexpr int firstYear = 100;
    constexpr int lastYear = 9999;
    Require(value.isValid() && value.date().year() >= firstYear && value.date().year() <= lastYear);
    Require(value.timeSpec() == Qt::UTC && value.time().msec() == 0);
}

void CheckWayBack(const QDateTime& value) {
    const QString written = runtime::DateToText(value);
    Require(runtime::TextToDate(written) == value);
    Require(runtime::DateToText(runtime::TextToDate(written)) == written);
    Require(runtime::DateFromNumber(runtime::NumberFromDate(value)) == value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const runtime::FixedToday today(QDate(2006, 12, 5));
    const QString text = QString::fromUtf8(fuzz::Bytes(data, size));
    const auto value = runtime::TryTextToDate(text);
    Require(runtime::IsDate(text) == value.has_value());
    if (value) {
        CheckRange(*value);
        CheckWayBack(*value);
        return 0;
    }
    try {
        runtime::TextToDate(text);
        Require(false);
    } catch (const runtime::Failure& failure) {
        Require(failure.number() == runtime::TypeMismatch);
    }
    return 0;
}
