#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>

#include <cstdio>
#include <ctime>

/// What a host costs: the time since its main() began, and its memory.
class Footprint
{
public:
    Footprint() { m_timer.start(); }

    /// Remembers the time until now; later calls do nothing.
    void ready()
    {
        if (m_milliseconds >= 0)
            return;
        m_milliseconds = double(m_timer.nsecsElapsed()) / 1e6;
        m_processorMilliseconds = processorMilliseconds() - m_processorStart;
    }

    /// Prints the time in milliseconds, the resident memory, and the part of it that the process has written
    /// itself, in kilobytes, and the processor's time in milliseconds, of all threads.
    void print() const
    {
        std::printf("%.2f %lld %lld %.2f\n", m_milliseconds, kilobytes("Rss:"), kilobytes("Private_Dirty:"),
                    m_processorMilliseconds);
    }

private:
    static double processorMilliseconds()
    {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
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

    QElapsedTimer m_timer;
    double m_milliseconds = -1;
    double m_processorStart = processorMilliseconds();
    double m_processorMilliseconds = -1;
};
