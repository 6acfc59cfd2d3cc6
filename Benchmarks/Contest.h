#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

/// Work of ours and of peers, done in turns, so that none has the machine at a better time.
namespace Contest {

inline constexpr int rounds = 9;

struct Contender
{
    const char *name;
    /// Does the work once and lets go of what came of it.
    std::function<void()> run;
};

/// Ends the program when what is to be measured did not happen.
inline void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "not measured: %s\n", what);
    std::exit(EXIT_FAILURE);
}

inline double milliseconds(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The median time of each contender, in milliseconds.
inline std::vector<double> medians(const std::vector<Contender> &contenders)
{
    std::vector<std::vector<double>> times(contenders.size());
    for (int round = 0; round < rounds; ++round) {
        for (size_t i = 0; i < contenders.size(); ++i)
            times[i].push_back(milliseconds(contenders[i].run));
    }
    std::vector<double> middle;
    for (std::vector<double> &series : times) {
        std::nth_element(series.begin(), series.begin() + rounds / 2, series.end());
        middle.push_back(series[rounds / 2]);
    }
    return middle;
}

/// Prints the median of each, and its ratio to that of the last one, the peer.
inline void print(const char *title, const std::vector<Contender> &contenders)
{
    std::printf("%s\n", title);
    const std::vector<double> times = medians(contenders);
    for (size_t i = 0; i < times.size(); ++i)
        std::printf("  %-32s %8.2f ms %8.2f\n", contenders[i].name, times[i], times[i] / times.back());
}

} // namespace Contest
