#pragma once

#include <chrono>

/// A point in time, for people and for measuring: on the system's clock, and on one that nobody can set.
struct QXMoment
{
    /// The present on both clocks. Any thread.
    [[nodiscard]] static QXMoment now()
    {
        return {std::chrono::system_clock::now(), std::chrono::steady_clock::now()};
    }

    /// The time of day, for people.
    std::chrono::system_clock::time_point date;
    /// For durations.
    std::chrono::steady_clock::time_point steady;
};
