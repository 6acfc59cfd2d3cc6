#include "Platform/BackgroundThread.h"

#include "Platform/ApplicationEnd.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThreadPool>

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

void followApplication()
{
    ApplicationEnd::call([] {
        pool().clear();
        pool().waitForDone(int(shutdownTimeout.count()));
    });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

void BackgroundThread::post(std::function<void()> work)
{
    pool().start(std::move(work));
}

} // namespace Quorvix
