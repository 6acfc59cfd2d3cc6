#pragma once

#include <QtCore/QString>

#include <functional>
#include <vector>

/// The work of which the instructions are counted.
struct HotPath
{
    const char *name;
    /// Prepares the work, of which @p amount is a percentage, and returns it. Whether it happened is checked
    /// after it has run: the returned function ends the program otherwise.
    std::function<std::function<void()>(int amount)> prepare;
};

/// All of them. They need an application object; main thread.
[[nodiscard]] const std::vector<HotPath> &hotPaths();
