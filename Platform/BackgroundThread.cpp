#include "Platform/BackgroundThread.h"

#include "Platform/ApplicationEnd.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QThreadPool>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <vector>

namespace Quorvix {

namespace {

using namespace std::chrono_literals;

/// How long the end of the application waits for work that has begun.
constexpr std::chrono::milliseconds shutdownTimeout = 2s;

/// The functions that cancel the work that has not ended.
struct Cancels
{
    using Function = std::shared_ptr<const std::function<void()>>;

    static Cancels &instance()
    {
        static auto *const cancels = new Cancels;
        return *cancels;
    }

    Function add(std::function<void()> cancel)
    {
        auto added = std::make_shared<const std::function<void()>>(std::move(cancel));
        const std::scoped_lock lock(mutex);
        std::erase_if(functions, [](const auto &function) { return function.expired(); });
        functions.emplace_back(added);
        return added;
    }

    void callAll()
    {
        const std::scoped_lock lock(mutex);
        for (const auto &function : functions) {
            if (const Function cancel = function.lock())
                (*cancel)();
        }
    }

    std::mutex mutex;
    std::vector<std::weak_ptr<const std::function<void()>>> functions;
};

/// A pool of one thread.
struct Lane
{
    Lane()
    {
        pool.setMaxThreadCount(1);
        pool.setExpiryTimeout(-1);
    }

    void start(std::function<void()> work, std::function<void()> cancel = {})
    {
        hasStarted = true;
        if (cancel)
            pool.start(
                [work = std::move(work), cancel = Cancels::instance().add(std::move(cancel))] { work(); });
        else
            pool.start(std::move(work));
    }

    QThreadPool pool;
    std::atomic<bool> hasStarted = false;
};

struct Lanes
{
    Lane work;
    Lane tasks;
};

Lanes &lanes()
{
    static auto *const lanes = new Lanes;
    return *lanes;
}

/// Whether there is an application whose end ends the threads.
std::atomic<bool> isOpen = false;

void followApplication()
{
    isOpen = true;
    // Called a second time at the end of the process, which need not wait again.
    ApplicationEnd::call([] {
        if (!isOpen.exchange(false))
            return;
        lanes().work.pool.clear();
        lanes().tasks.pool.clear();
        Cancels::instance().callAll();
        const QDeadlineTimer deadline(shutdownTimeout);
        lanes().tasks.pool.waitForDone(int(deadline.remainingTime()));
        lanes().work.pool.waitForDone(int(deadline.remainingTime()));
    });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

void BackgroundThread::post(std::function<void()> work, std::function<void()> cancel)
{
    if (isOpen)
        lanes().work.start(std::move(work), std::move(cancel));
}

void BackgroundThread::postTask(std::function<void()> work, std::function<void()> cancel)
{
    if (isOpen)
        lanes().tasks.start(std::move(work), std::move(cancel));
}

void BackgroundThread::postBehindTasks(std::function<void()> work)
{
    if (isOpen && lanes().tasks.hasStarted)
        lanes().tasks.start(std::move(work));
}

} // namespace Quorvix
