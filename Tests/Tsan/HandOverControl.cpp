// Hands a number from one thread to another in the way that the argument names. Under ThreadSanitizer a
// report is expected for each way whose name begins with "race", and none for the others. Without these
// programs nobody would know whether a silent run of the tests means anything.

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QProcess>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtCore/QThreadPool>

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace {

/// Written by one thread and read by another, by compiled code of this program, without an atomic operation.
int number = 0;

constexpr auto write = [] {
    ++number;
};

class Receiver final : public QObject
{
public:
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        write();
        QCoreApplication::quit();
        return true;
    }
};

/// Lets another thread write, and post(receiver) after it.
void writeAndPost(const std::function<void(QObject *)> &post)
{
    Receiver receiver;
    std::thread other([&] {
        write();
        post(&receiver);
    });
    QCoreApplication::exec();
    other.join();
}

void writeAndQuit()
{
    write();
    QCoreApplication::quit();
}

void byPostedEvent()
{
    writeAndPost([](QObject *receiver) { QCoreApplication::postEvent(receiver, new QEvent(QEvent::User)); });
}

void byQueuedCall()
{
    writeAndPost(
        [](QObject *receiver) { QMetaObject::invokeMethod(receiver, writeAndQuit, Qt::QueuedConnection); });
}

void byQueuedSignal()
{
    writeAndPost([](QObject *receiver) {
        QObject sender;
        QObject::connect(&sender, &QObject::objectNameChanged, receiver, writeAndQuit, Qt::QueuedConnection);
        sender.setObjectName(QStringLiteral("changed"));
    });
}

void byDeletion()
{
    std::thread other([] {
        auto *const object = new QObject;
        QObject::connect(object, &QObject::destroyed, writeAndQuit);
        object->moveToThread(QCoreApplication::instance()->thread());
        write();
        object->deleteLater();
    });
    QCoreApplication::exec();
    other.join();
}

void byThread()
{
    write();
    const std::unique_ptr<QThread> thread(QThread::create(write));
    thread->start();
    thread->wait();
    write();
}

void byFinishedThread()
{
    const std::unique_ptr<QThread> thread(QThread::create(write));
    QObject::connect(thread.get(), &QThread::finished, thread.get(), writeAndQuit);
    thread->start();
    QCoreApplication::exec();
    thread->wait();
}

void byPool()
{
    QThreadPool pool;
    pool.setMaxThreadCount(1);
    write();
    pool.start(write);
    pool.waitForDone();
    write();
}

void bySemaphore()
{
    QSemaphore written;
    std::thread other([&] {
        write();
        written.release();
    });
    written.acquire();
    write();
    other.join();
}

/// The lock is seen, also after the thread has started another program.
void byMutexAfterProcess()
{
    QProcess::execute(QStringLiteral("true"), {});
    std::mutex mutex;
    const auto writeLocked = [&] {
        const std::scoped_lock lock(mutex);
        write();
    };
    std::thread other(writeLocked);
    writeLocked();
    other.join();
}

void raceAfterProcess()
{
    std::thread other([] { QThread::msleep(100); });
    QProcess::execute(QStringLiteral("true"), {});
    std::thread third(write);
    write();
    third.join();
    other.join();
}

void raceOfThreads()
{
    std::thread other(write);
    write();
    other.join();
}

/// The events go the other way.
void raceAfterEvent()
{
    writeAndPost([](QObject *receiver) {
        QCoreApplication::postEvent(receiver, new QEvent(QEvent::User));
        write();
    });
}

void raceAfterQueuedSignal()
{
    writeAndPost([](QObject *receiver) {
        QObject sender;
        QObject::connect(&sender, &QObject::objectNameChanged, receiver, writeAndQuit, Qt::QueuedConnection);
        sender.setObjectName(QStringLiteral("changed"));
        write();
    });
}

void raceBesideEvents()
{
    Receiver receiver;
    std::thread other([&] {
        QCoreApplication::postEvent(&receiver, new QEvent(QEvent::None));
        write();
    });
    write();
    other.join();
}

void raceWithPool()
{
    QThreadPool pool;
    pool.start(write);
    write();
    pool.waitForDone();
}

} // namespace

int main(int argc, char *argv[])
{
    static const std::map<std::string, void (*)()> ways{
        {"posted-event", byPostedEvent},
        {"queued-call", byQueuedCall},
        {"queued-signal", byQueuedSignal},
        {"deletion", byDeletion},
        {"thread", byThread},
        {"finished-thread", byFinishedThread},
        {"pool", byPool},
        {"semaphore", bySemaphore},
        {"mutex-after-process", byMutexAfterProcess},
        {"race-after-process", raceAfterProcess},
        {"race-of-threads", raceOfThreads},
        {"race-after-event", raceAfterEvent},
        {"race-after-queued-signal", raceAfterQueuedSignal},
        {"race-beside-events", raceBesideEvents},
        {"race-with-pool", raceWithPool},
    };
    QCoreApplication application(argc, argv);
    const auto way = ways.find(argc == 2 ? argv[1] : "");
    if (way == ways.end()) {
        for (const auto &[name, function] : ways)
            std::printf("%s\n", name.c_str());
        return 2;
    }
    way->second();
    return 0;
}
