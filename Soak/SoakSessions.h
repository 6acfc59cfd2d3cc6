#pragma once

#include "Soak/SoakLedger.h"

#include <thread>
#include <vector>

class SoakBreakpoints;

/// Starts exchanges through sessions, on the main thread and on threads of its own, and cancels some of them.
/// Checks that each completes once, on the main thread, after the recorder knows its result.
class SoakSessions final
{
public:
    SoakSessions(SoakLedger &ledger, SoakBreakpoints &breakpoints, quint16 port, quint64 seed);
    ~SoakSessions();
    SoakSessions(const SoakSessions &) = delete;
    SoakSessions &operator=(const SoakSessions &) = delete;

    /// Whether the threads start exchanges. Any thread.
    void setActive(bool active) { m_isActive = active; }

private:
    class Starter;
    void run(SoakSource source, quint64 seed);

    SoakLedger &m_ledger;
    SoakBreakpoints &m_breakpoints;
    const quint16 m_port;
    std::atomic<bool> m_isActive = false;
    std::atomic<bool> m_ends = false;
    std::vector<std::thread> m_threads;
    std::unique_ptr<QObject> m_onMain;
};
