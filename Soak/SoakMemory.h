#pragma once

#include <QtCore/QList>

class SoakLedger;

/// Compares the memory after each round, when nothing runs and the recorder is empty. Main thread only.
class SoakMemory final
{
public:
    explicit SoakMemory(SoakLedger &ledger) : m_ledger(ledger) {}

    /// Measures after a round, and complains if more is in use than after the first rounds.
    void measureRound();
    /// Measures while exchanges run.
    void measurePeak();
    /// Two lines of figures.
    void print() const;

    /// The physical memory of the process, in bytes.
    [[nodiscard]] static qint64 resident();
    /// What the process has allocated and not freed, in bytes; 0 where the allocator does not tell.
    [[nodiscard]] static qint64 allocated();

private:
    struct Measure
    {
        qint64 resident;
        qint64 allocated;
    };

    /// Compares the least of the last rounds with the most of the first ones.
    void check(const char *what, qint64 Measure::*field, qsizetype last, qint64 tolerance);

    SoakLedger &m_ledger;
    QList<Measure> m_rounds;
    qint64 m_peak = 0;
};
