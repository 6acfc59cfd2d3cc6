#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <cstdio>
#include <cstdlib>
#include <optional>

/// One line of the table that `./run bench` prints.
namespace Report {

/// Something that ours is compared with: a peer that does the same work, or a limit that no code can beat. A
/// variant of our own code, such as the same with less data, is a row of its own.
struct Other
{
    const char *name;
    double value;
};

struct Row
{
    /// What is measured, for example "HAR of 1,000 bodies of 100 KB".
    const char *metric = "";
    /// Where it is measured: the thread, the process, the way to the screen.
    const char *place = "";
    /// Of all values: "ms", "us", "MB/s", "/s", "bytes", "x".
    const char *unit = "";
    /// The median of alternating rounds.
    double ours = 0;
    std::optional<Other> peer = {};
    std::optional<Other> limit = {};
    /// Whether a larger value is better, as of a rate.
    bool isRate = false;
    /// The goal in words, for example "6 x the peer"; may be null.
    const char *goal = nullptr;
    /// The goal in numbers, so that the table can say whether it is met: all that are set have to be. A value
    /// that ours has to reach, how many times better than the peer it has to be (0.8 of the peer's
    /// time: 1.25), and the part of the limit that it has to reach.
    std::optional<double> goalValue = {};
    std::optional<double> goalAdvantage = {};
    std::optional<double> goalOfLimit = {};
};

/// How many times better ours is than another value of the same row. Nothing unless both values are positive:
/// a difference of zero or less is no number of times better than anything.
inline std::optional<double> advantage(const Row &row, const Other &other)
{
    if (!(row.ours > 0 && other.value > 0))
        return {};
    return row.isRate ? row.ours / other.value : other.value / row.ours;
}

/// Whether the goal is met, if it has numbers. What is not a number meets none, and so does an advantage that
/// there is not.
inline std::optional<bool> meetsGoal(const Row &row)
{
    std::optional<bool> met;
    const auto check = [&](const std::optional<double> &wanted, const std::optional<Other> &other) {
        if (wanted)
            met = met.value_or(true) && other && advantage(row, *other).value_or(0) >= *wanted;
    };
    if (row.goalValue)
        met = row.isRate ? row.ours >= *row.goalValue : row.ours <= *row.goalValue;
    check(row.goalAdvantage, row.peer);
    check(row.goalOfLimit, row.limit);
    return met;
}

/// Prints the row, and appends it as one line of JSON to the file that QUORVIX_BENCH_ROWS names.
inline void add(const Row &row)
{
    std::printf("  %-52s %10.3f %-5s", row.metric, row.ours, row.unit);
    QJsonObject object{{QStringLiteral("metric"), QString::fromUtf8(row.metric)},
                       {QStringLiteral("place"), QString::fromUtf8(row.place)},
                       {QStringLiteral("unit"), QString::fromUtf8(row.unit)},
                       {QStringLiteral("ours"), row.ours},
                       {QStringLiteral("isRate"), row.isRate}};
    const auto addOther = [&](const char *key, const std::optional<Other> &other) {
        if (!other)
            return;
        std::printf("  %s: %.3f", other->name, other->value);
        const std::optional<double> times = advantage(row, *other);
        if (times)
            std::printf(" (%.2f x)", *times);
        object.insert(QString::fromLatin1(key),
                      QJsonObject{{QStringLiteral("name"), QString::fromUtf8(other->name)},
                                  {QStringLiteral("value"), other->value},
                                  {QStringLiteral("advantage"), times ? QJsonValue(*times) : QJsonValue()}});
    };
    addOther("peer", row.peer);
    addOther("limit", row.limit);
    if (row.goal)
        object.insert(QStringLiteral("goal"), QString::fromUtf8(row.goal));
    if (const std::optional<bool> met = meetsGoal(row))
        object.insert(QStringLiteral("met"), *met);
    std::printf("\n");
    std::fflush(stdout);

    const QByteArray path = qgetenv("QUORVIX_BENCH_ROWS");
    if (path.isEmpty())
        return;
    QFile file(QFile::decodeName(path));
    if (!file.open(QFile::Append) ||
        file.write(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n') < 0) {
        std::fprintf(stderr, "cannot write %s\n", path.constData());
        std::exit(EXIT_FAILURE);
    }
}

} // namespace Report
