#include "Soak/SoakMemory.h"

#include "Soak/SoakLedger.h"

#include <QtCore/QFile>

#include <algorithm>
#include <cstdio>

#include <malloc.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace {

constexpr qint64 megabyte = 1'000'000;
/// Caches fill in these rounds: glyphs, compiled QML, names of headers, connections.
constexpr qsizetype firstRounds = 6;
/// What caches and the last sweep of the script engine make of a difference between rounds. A body of average
/// size that stays behind in each round exceeds it within a few rounds.
constexpr qint64 allocatedTolerance = 6 * megabyte;
/// Freed memory between blocks in use stays resident, in each round another amount. So the least of the last
/// rounds counts.
constexpr qsizetype lastRounds = 6;
constexpr qint64 residentTolerance = 100 * megabyte;
constexpr qint64 residentLimit = 1500 * megabyte;

} // namespace

qint64 SoakMemory::resident()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

qint64 SoakMemory::allocated()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return qint64(__sanitizer_get_current_allocated_bytes());
#else
    const auto info = mallinfo2();
    return qint64(info.uordblks) + qint64(info.hblkhd);
#endif
}

void SoakMemory::measureRound()
{
    m_rounds.append({resident(), allocated()});
    const qsizetype count = m_rounds.size();
    std::printf("round %lld: %lld kB allocated, %lld MB resident\n", static_cast<long long>(count),
                static_cast<long long>(m_rounds.last().allocated / 1000),
                static_cast<long long>(m_rounds.last().resident / megabyte));
    if (count > firstRounds)
        check("allocated", &Measure::allocated, 1, allocatedTolerance);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // Sanitizers keep freed memory, and shadows of all of it.
    if (count >= firstRounds + lastRounds)
        check("resident", &Measure::resident, lastRounds, residentTolerance);
#endif
}

void SoakMemory::check(const char *what, qint64 Measure::*field, qsizetype last, qint64 tolerance)
{
    const auto less = [field](const Measure &left, const Measure &right) {
        return left.*field < right.*field;
    };
    const qint64 before =
        (*std::max_element(m_rounds.cbegin(), m_rounds.cbegin() + firstRounds, less)).*field;
    const qint64 now = (*std::min_element(m_rounds.cend() - last, m_rounds.cend(), less)).*field;
    if (now > before + tolerance)
        m_ledger.complain(
            QStringLiteral("%1 kB are %2 after round %3, but at most %4 kB after the first rounds")
                .arg(now / 1000)
                .arg(QLatin1StringView(what))
                .arg(m_rounds.size())
                .arg(before / 1000));
}

void SoakMemory::measurePeak()
{
    const qint64 now = resident();
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    if (now > residentLimit && m_peak <= residentLimit)
        m_ledger.complain(QStringLiteral("%1 MB are resident").arg(now / megabyte));
#endif
    m_peak = std::max(m_peak, now);
}

void SoakMemory::print() const
{
    if (m_rounds.isEmpty())
        return;
    const auto line = [](const char *when, const Measure &measure) {
        std::printf("%-18s %6lld kB allocated, %5lld MB resident\n", when,
                    static_cast<long long>(measure.allocated / 1000),
                    static_cast<long long>(measure.resident / megabyte));
    };
    line("after round 1", m_rounds.first());
    line("after the last", m_rounds.last());
    std::printf("%-18s %6lld MB resident\n", "at the peak", static_cast<long long>(m_peak / megabyte));
}
