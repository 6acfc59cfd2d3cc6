#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>

#include <cstdio>
#include <cstdlib>
#include <ctime>

/// What a host costs: the time since another process was about to start it, what the loader does included,
/// and its memory.
class Footprint
{
public:
    /// The variable in which the other process names that time, in nanoseconds of the monotonic clock.
    static constexpr const char *startVariable = "QUORVIX_HOST_START";

    static long long now() { return nanoseconds(CLOCK_MONOTONIC); }

    /// Ends the program if nobody has said when it was started.
    Footprint()
    {
        if (m_start > 0)
            return;
        std::fprintf(stderr, "%s is not set\n", startVariable);
        std::exit(EXIT_FAILURE);
    }

    /// Remembers the time until now; later calls do nothing.
    void ready()
    {
        if (m_milliseconds >= 0)
            return;
        m_milliseconds = double(now() - m_start) / 1e6;
        // From the beginning of the process.
        m_processorMilliseconds = double(nanoseconds(CLOCK_PROCESS_CPUTIME_ID)) / 1e6;
    }

    /// Prints the time in milliseconds, the resident memory, and the part of it that the process has written
    /// itself, in kilobytes, and the processor's time in milliseconds, of all threads.
    void print() const
    {
        std::printf("%.2f %lld %lld %.2f\n", m_milliseconds, kilobytes("Rss:"), kilobytes("Private_Dirty:"),
                    m_processorMilliseconds);
    }

private:
    static long long nanoseconds(clockid_t clock)
    {
        timespec time{};
        clock_gettime(clock, &time);
        return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
    }

    static long long kilobytes(const char *name)
    {
        QFile file(QStringLiteral("/proc/self/smaps_rollup"));
        if (!file.open(QIODevice::ReadOnly))
            return 0;
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (line.startsWith(name))
                return line.simplified().split(' ').value(1).toLongLong();
        }
        return 0;
    }

    const long long m_start = qgetenv(startVariable).toLongLong();
    double m_milliseconds = -1;
    double m_processorMilliseconds = -1;
};
