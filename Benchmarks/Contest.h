#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <vector>

/// Measures our code and peers alternately, so that changes in the load of the machine affect all of them.
namespace Contest {

inline constexpr int rounds = 9;

struct Contender
{
    const char *name;
    /// Does the work once and frees the result.
    std::function<void()> run;
};

/// Ends the program with an error when the measured work did not happen.
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

/// The median of several values in any order.
inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The median time of each contender, in milliseconds. Fewer rounds will do where contenders differ much and
/// each takes long.
inline std::vector<double> medians(const std::vector<Contender> &contenders, int count = rounds)
{
    std::vector<std::vector<double>> times(contenders.size());
    for (int round = 0; round < count; ++round) {
        for (size_t i = 0; i < contenders.size(); ++i)
            times[i].push_back(milliseconds(contenders[i].run));
    }
    std::vector<double> middle;
    std::transform(times.begin(), times.end(), std::back_inserter(middle), median);
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

/// Prints the median and the maximum of waiting times, in milliseconds. The maximum matters because a user
/// sees every single run.
inline void printWaits(const char *what, const std::vector<double> &times)
{
    std::printf("  %-44s %8.1f ms, %.1f ms at worst\n", what, median(times),
                *std::max_element(times.begin(), times.end()));
}

} // namespace Contest
