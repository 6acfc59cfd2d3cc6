#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

/// What was counted on a system, and what is expected there.
namespace Baseline {

/// How many more instructions are allowed, as a part of the recorded number. Runs differ by 0.4 % at most, in
/// the addresses and the length of the environment; an update of a library may add a little.
inline constexpr double tolerance = 0.03;

/// What decides how many instructions a program needs: compiler, libraries, and the features of the processor
/// for which libraries select their code. Under valgrind it is the processor that valgrind emulates.
[[nodiscard]] QJsonObject thisSystem();

/// Reads lines of the form "number name".
[[nodiscard]] QJsonObject readCounts(const QByteArray &lines);

struct Verdict
{
    bool isGood = true;
    /// For people, several lines.
    QString text;
};

/// Compares @p counts with those of @p baseline, if both are from the same system; others cannot be compared,
/// which is good. A path that only one of them has is not.
[[nodiscard]] Verdict compare(const QJsonObject &counts, const QJsonObject &system,
                              const QJsonObject &baseline);

} // namespace Baseline
