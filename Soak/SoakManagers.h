#pragma once

#include "Soak/SoakLedger.h"

#include <QtCore/QThread>

#include <vector>

class SoakBreakpoints;
class SoakManager;

/// Starts exchanges through captured network access managers, on the main thread and on threads of its own;
/// reads the replies in different ways; aborts and deletes some, and some managers with them. Checks that a
/// reply finishes at most once, and that its trace says what the host is not told.
class SoakManagers final
{
public:
    SoakManagers(SoakLedger &ledger, SoakBreakpoints &breakpoints, quint16 port, quint64 seed);
    /// Ends the threads.
    ~SoakManagers();
    SoakManagers(const SoakManagers &) = delete;
    SoakManagers &operator=(const SoakManagers &) = delete;

    /// Whether they start exchanges. Main thread.
    void setActive(bool active) { m_isActive = active; }

private:
    std::atomic<bool> m_isActive = false;
    std::unique_ptr<SoakManager> m_onMain;
    std::vector<std::unique_ptr<QThread>> m_threads;
};
