#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <initializer_list>
#include <vector>

namespace test {

/// A moment that lets the child come to its end, however slow the machine is.
inline constexpr std::chrono::microseconds ToTheEnd = std::chrono::microseconds::max();

/// Runs a disabled test of this program in a child process and kills it hard so long after it has said
/// "working". Returns the lines that it said behind that. The child finds `handed` by HandedOver.
QByteArray KillWhileRunning(const QString& disabledTest, const QString& handed,
                            std::chrono::microseconds moment);

/// In the child: what the parent has handed over.
QString HandedOver();
/// In the child: says a line at once. "working" starts the parent's clock.
void TellParent(const QByteArray& line);

/// The moments of the kills: those given; in the full run `count` more at random up to the longest of them.
/// Writes the seed of the random ones and their number to stdout.
std::vector<std::chrono::microseconds>
Moments(const char* work, std::initializer_list<std::chrono::microseconds> fixed, int count);

} // namespace test
