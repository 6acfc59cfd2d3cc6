#include "Platform/LoadingThread.h"

#include "Platform/TaskMailbox.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>

namespace Quorvix {

namespace {

using namespace std::chrono_literals;

/// How long the end of the application waits for a completion handler that is still running.
constexpr auto shutdownTimeout = 2s;

struct Loading
{
    std::mutex mutex;
    QThread *thread = nullptr;
    TaskMailbox mailbox;

    static Loading &instance()
    {
        static auto *const loading = new Loading;
        return *loading;
    }

    void startOnce()
    {
        const std::scoped_lock lock(mutex);
        if (thread || !isApplicationRunning)
            return;
        thread = new QThread;
        thread->setObjectName(QStringLiteral("NSURLSession"));
        thread->start();
        mailbox.open(thread);
    }

    void applicationStarts()
    {
        const std::scoped_lock lock(mutex);
        isApplicationRunning = true;
        mailbox.reset();
        qAddPostRoutine([] { instance().applicationEnds(); });
    }

    void applicationEnds()
    {
        QObject *receiver = nullptr;
        QThread *ending = nullptr;
        {
            const std::scoped_lock lock(mutex);
            isApplicationRunning = false;
            receiver = mailbox.close();
            ending = std::exchange(thread, nullptr);
        }
        if (!ending)
            return;
        // The receiver deletes its children, the network access managers with their replies, in the thread
        // that they live in. Running exchanges end without a completion call, because the application is
        // ending.
        receiver->deleteLater();
        ending->quit();
        if (ending->wait(QDeadlineTimer(shutdownTimeout)))
            delete ending;
    }

private:
    bool isApplicationRunning = false;
};

void followApplication()
{
    Loading::instance().applicationStarts();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

void LoadingThread::post(std::function<void()> task)
{
    Loading &loading = Loading::instance();
    loading.startOnce();
    loading.mailbox.post(std::move(task));
}

QObject *LoadingThread::parent()
{
    return Loading::instance().mailbox.receiver();
}

} // namespace Quorvix
