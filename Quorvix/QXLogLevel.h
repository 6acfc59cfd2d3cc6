#pragma once

#include <optional>

/// The amount of diagnostic output of the inspector; levels are compared by raw value.
enum class QXLogLevel : unsigned char {
    none = 0,
    error = 1,
    info = 2,
    debug = 3,
};

/// Returns the level with this raw value; absent outside 0 to 3.
[[nodiscard]] constexpr std::optional<QXLogLevel> makeQXLogLevel(int rawValue)
{
    if (rawValue < 0 || rawValue > 3)
        return std::nullopt;
    return static_cast<QXLogLevel>(rawValue);
}
