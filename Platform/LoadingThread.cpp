#include "Platform/LoadingThread.h"

#include "Platform/ApplicationEnd.h"
#include "Platform/MainActor.h"
#include "Platform/NSURLResponse.h"
#include "Platform/TaskMailbox.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>

#include <chrono>
#include <memory>
#include <utility>
#include <vector>

namespace Quorvix {

namespace {

using namespace std::chrono_literals;

/// How long the end of the application waits for a completion handler that is still running.
constexpr auto shutdownTimeout = 2s;

/// How many tasks wait for each other at most, on their way to the main thread, and for how long.
constexpr std::size_t mostWaiting = 8;
constexpr auto longestWait = 200us;

/// What has been given back, on its way to the thread.
class Returns
{
public:
    struct Item
    {
        std::optional<QByteArray> data;
        NSURLResponsePtr response;
    };

    static Returns &instance()
    {
        static auto *const returns = new Returns;
        return *returns;
    }

    void add(Item item)
    {
        const std::scoped_lock lock(m_mutex);
        // The thread may be idle for long. More than this is destroyed by the caller.
        if (m_items.size() < most)
            m_items.push_back(std::move(item));
    }

    /// Moves all of it to an empty list.
    void takeAll(std::vector<Item> &items)
    {
        const std::scoped_lock lock(m_mutex);
        m_items.swap(items);
    }

private:
    static constexpr std::size_t most = 32;

    std::mutex m_mutex;
    std::vector<Item> m_items;
};

class Thread final : public QThread
{
public:
    /// The parent of all objects in this thread.
    QObject *receiver = nullptr;

    /// Null in other threads.
    static Thread *current() { return s_current; }

    void deliver(MailboxTaskPtr task)
    {
        const auto now = std::chrono::steady_clock::now();
        if (m_waiting.empty())
            m_waitingSince = now;
        m_waiting.push_back(std::move(task));
        if (m_waiting.size() == mostWaiting || now - m_waitingSince > longestWait)
            deliverNow();
    }

    void deliverNow()
    {
        if (!m_waiting.empty())
            MainActor::post(std::exchange(m_waiting, {}));
    }

protected:
    void run() override
    {
        s_current = this;
        connect(eventDispatcher(), &QAbstractEventDispatcher::aboutToBlock, eventDispatcher(), [this] {
            deliverNow();
            destroyReturns();
        });
        QThread::run();
        s_current = nullptr;
        destroyReturns();
        // Nothing is delivered after the end of the application.
        m_waiting.clear();
    }

private:
    void destroyReturns()
    {
        Returns::instance().takeAll(m_returns);
        m_returns.clear();
    }

    static thread_local Thread *s_current;

    // In this thread only.
    std::vector<MailboxTaskPtr> m_waiting;
    /// Empty: its memory is exchanged with that of the list.
    std::vector<Returns::Item> m_returns;
    std::chrono::steady_clock::time_point m_waitingSince;
};

thread_local Thread *Thread::s_current = nullptr;

class Loading
{
public:
    static Loading &instance()
    {
        static auto *const loading = new Loading;
        return *loading;
    }

    void post(std::function<void()> task)
    {
        if (m_mailbox.post(std::move(task)))
            return;
        const std::scoped_lock lock(m_mutex);
        startIfNeeded();
    }

    void applicationStarts()
    {
        ApplicationEnd::call([] { instance().applicationEnds(); });
        const std::scoped_lock lock(m_mutex);
        m_isApplicationRunning = true;
        std::erase_if(m_lateThreads, [](const auto &thread) { return thread->isFinished(); });
        startIfNeeded();
    }

    void applicationEnds()
    {
        TaskMailbox::Remains remains;
        std::unique_ptr<Thread> ending;
        {
            const std::scoped_lock lock(m_mutex);
            m_isApplicationRunning = false;
            remains = m_mailbox.close();
            ending = std::move(m_thread);
        }
        if (!ending)
            return;
        // From here on no completion handler is called, because the application is ending. Tasks that wait
        // in the queue are dropped here, and running exchanges in their own thread: the receiver deletes its
        // children, the network access managers with their replies, in the thread that they live in.
        ending->requestInterruption();
        remains.tasks.clear();
        remains.receiver->deleteLater();
        ending->quit();
        if (!ending->wait(QDeadlineTimer(shutdownTimeout)))
            m_lateThreads.push_back(std::move(ending));
    }

private:
    /// The caller holds the lock.
    void startIfNeeded()
    {
        if (m_thread || !m_isApplicationRunning || !m_mailbox.hasWaitingTasks())
            return;
        m_thread = std::make_unique<Thread>();
        m_thread->setObjectName(QStringLiteral("NSURLSession"));
        m_thread->receiver = m_mailbox.open(m_thread.get());
        m_thread->start();
    }

    std::mutex m_mutex;
    std::unique_ptr<Thread> m_thread;
    bool m_isApplicationRunning = false;
    TaskMailbox m_mailbox;
    /// Threads that had not ended in time. A running thread cannot be deleted. In the application's thread
    /// only.
    std::vector<std::unique_ptr<Thread>> m_lateThreads;
};

void followApplication()
{
    Loading::instance().applicationStarts();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

void LoadingThread::post(std::function<void()> task)
{
    Loading::instance().post(std::move(task));
}

void LoadingThread::deliver(MailboxTaskPtr task)
{
    if (Thread *const thread = Thread::current())
        thread->deliver(std::move(task));
    else
        MainActor::post(std::move(task));
}

void LoadingThread::deliverNow()
{
    // Null at the end of the thread.
    if (auto *const thread = Thread::current())
        thread->deliverNow();
}

void LoadingThread::giveBack(std::optional<QByteArray> data, NSURLResponsePtr response)
{
    if (data || response)
        Returns::instance().add({std::move(data), std::move(response)});
}

QObject *LoadingThread::parent()
{
    return static_cast<Thread *>(QThread::currentThread())->receiver;
}

bool LoadingThread::isEnding()
{
    return QThread::currentThread()->isInterruptionRequested();
}

} // namespace Quorvix
