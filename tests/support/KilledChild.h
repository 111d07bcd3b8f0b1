#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <initializer_list>
#include <string>
#include <vector>

namespace test {

/// In place of a moment: the child has said that it is at its end, however slow the machine is.
inline constexpr auto AtTheEnd = std::chrono::microseconds::max();

/// Runs the current test in a child process and kills it hard, so long after it said "working". Gives all
/// that it has said. What temporary folders it has made stand under the given one.
QByteArray KillWhileRunning(const QString& temporary, std::chrono::microseconds moment);

/// In the child: whether this is one.
bool IsKilledChild();
/// In the child: says a line at once. "working" starts the parent's clock.
void TellParent(const QByteArray& line);
/// In the child: the work is done, and the kill has to come.
[[noreturn]] void WaitForTheKill();

/// The moments of the kills: those given; in the full run `count` more at random up to the longest of them.
/// Writes the seed of the random ones and the number of all to stdout.
std::vector<std::chrono::microseconds>
Moments(const std::string& work, std::initializer_list<std::chrono::microseconds> fixed, int count);

} // namespace test
