#pragma once

#include <QtCore/QString>

/// The last events of the monkey, and how many of each kind there were. Main thread only, except print().
namespace MonkeyDiary {

/// Stores an event; only the last 50 are kept.
void note(const char *kind, const QString &what = {});

/// Writes the last events to the standard error output. It allocates no memory and takes no lock, so that it
/// can be called after a crash and in any thread.
void print() noexcept;

/// How many events of each kind were noted, as "click 120, key 80".
[[nodiscard]] QString counts();

} // namespace MonkeyDiary
