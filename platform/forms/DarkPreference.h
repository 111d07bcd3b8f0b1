#pragma once

#include <functional>

class QObject;

namespace forms {

/// Asks the desktop whether dark windows are preferred (its settings portal, or the registry on Windows), and
/// goes on listening as long as the owner lives. `tell` is called at once with the answer, if there is one,
/// and again on every change. Where there is no registry, without a session bus, a portal that runs, or a
/// build with Qt's D-Bus module nothing is told. Waits 0.2 s at most.
void WatchDarkPreference(QObject* owner, const std::function<void(bool dark)>& tell);

} // namespace forms
