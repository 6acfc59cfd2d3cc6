#pragma once

#include <functional>

class QQuickWindow;

/// Leaves the inspector's screens by clicks, as a user does. Main thread only; the functions run the event
/// loop.
namespace MonkeyHome {

/// Releases all held responses and closes all screens, until @p isQuiet and only the host is visible. Returns
/// false and complains when that does not succeed in a minute.
bool leaveAll(QQuickWindow &window, const std::function<bool()> &isQuiet);

/// Deletes all rules in the list of breakpoints. Begins and ends with the host.
bool deleteRules(QQuickWindow &window, const std::function<bool()> &isQuiet);

} // namespace MonkeyHome
