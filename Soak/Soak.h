#pragma once

#include "Soak/SoakBreakpoints.h"
#include "Soak/SoakExports.h"
#include "Soak/SoakManagers.h"
#include "Soak/SoakMemory.h"
#include "Soak/SoakScreens.h"
#include "Soak/SoakSessions.h"

#include "Examples/MonkeyGuard.h"

#include <QtCore/QElapsedTimer>

/// Loads the inspector with exchanges of all kinds for a long time, in rounds, and checks what comes of each.
/// Main thread only.
class Soak final
{
public:
    Soak(quint16 port, quint64 seed);

    /// Runs for about this time and prints what happened. Returns whether all was right.
    [[nodiscard]] bool run(std::chrono::seconds time);

private:
    void playRound(std::chrono::seconds time);
    void endRound();
    void setActive(bool active);
    void printLine() const;

    const quint64 m_seed;
    QElapsedTimer m_clock;
    MonkeyGuard m_guard;
    SoakLedger m_ledger;
    SoakBreakpoints m_breakpoints;
    SoakExports m_exports;
    SoakScreens m_screens;
    SoakMemory m_memory;
    SoakSessions m_sessions;
    SoakManagers m_managers;
};
