#include "Platform/BackgroundThread.h"

#include "Platform/ApplicationEnd.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThreadPool>

#include <atomic>
#include <chrono>

namespace Quorvix {

namespace {

using namespace std::chrono_literals;

/// How long the end of the application waits for work that has begun.
constexpr std::chrono::milliseconds shutdownTimeout = 2s;

QThreadPool &pool()
{
    static auto *const pool = [] {
        auto *const made = new QThreadPool;
        made->setMaxThreadCount(1);
        made->setExpiryTimeout(-1);
        return made;
    }();
    return *pool;
}

/// Whether there is an application whose end ends the thread.
std::atomic<bool> isOpen = false;

void followApplication()
{
    isOpen = true;
    // Called a second time at the end of the process, which need not wait again.
    ApplicationEnd::call([] {
        if (!isOpen.exchange(false))
            return;
        pool().clear();
        pool().waitForDone(int(shutdownTimeout.count()));
    });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

void BackgroundThread::post(std::function<void()> work)
{
    if (isOpen)
        pool().start(std::move(work));
}

} // namespace Quorvix
