#pragma once

#include <chrono>

/// A point in time, for people and for measuring: on the system's clock, and on one that nobody can set.
struct QXMoment
{
    [[nodiscard]] static QXMoment now()
    {
        return {std::chrono::system_clock::now(), std::chrono::steady_clock::now()};
    }

    std::chrono::system_clock::time_point date;
    std::chrono::steady_clock::time_point steady;
};
