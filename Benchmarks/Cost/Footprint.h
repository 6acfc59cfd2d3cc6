#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>

#include <cstdio>

/// What a host costs: the time since its main() began, and its memory.
class Footprint
{
public:
    Footprint() { m_timer.start(); }

    /// Remembers the time until now; later calls do nothing.
    void ready()
    {
        if (m_milliseconds < 0)
            m_milliseconds = double(m_timer.nsecsElapsed()) / 1e6;
    }

    /// Prints the time in milliseconds, the resident memory, and the part of it that the process has written
    /// itself, in kilobytes.
    void print() const
    {
        std::printf("%.2f %lld %lld\n", m_milliseconds, kilobytes("Rss:"), kilobytes("Private_Dirty:"));
    }

private:
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
};
