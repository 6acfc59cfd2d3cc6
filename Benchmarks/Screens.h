#pragma once

#include "Tests/ScreenDriver.h"

#include "Quorvix/QuorvixClient.h"

#include "Benchmarks/Contest.h"

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QThread>
#include <QtGui/QGuiApplication>

#include <algorithm>
#include <ctime>
#include <functional>

/// What the benchmarks of screens share.
namespace Screens {

inline constexpr QSize phone(390, 844);

using Work = std::function<void()>;

/// How long some work has a processor in this thread, in milliseconds. On a busy machine a frame of a few
/// milliseconds often waits for one, which says nothing about the frame.
inline double processorMilliseconds(const Work &work)
{
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    };
    const double start = now();
    work();
    return now() - start;
}

/// How long some work takes in this thread, in milliseconds, with its waits for files and locks, but without
/// those for a processor, where the system tells them.
inline double ownMilliseconds(const Work &work)
{
    const auto waits = [] {
        QFile file(QStringLiteral("/proc/thread-self/schedstat"));
        if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return 0.0;
        return file.read(100).split(' ').value(1).toDouble() / 1e6;
    };
    const double before = waits();
    const double taken = Contest::milliseconds(work);
    return taken - (waits() - before);
}

/// An application without a display, with the software renderer and settings of its own.
template<typename Application = QGuiApplication>
class Program
{
public:
    Program(int &argc, char **argv, const char *name) : m_application(prepared(argc), argv)
    {
        QCoreApplication::setOrganizationName(QStringLiteral("QuorvixBenchmarks"));
        QCoreApplication::setApplicationName(QString::fromLatin1(name));
    }

private:
    static int &prepared(int &argc)
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
        QStandardPaths::setTestModeEnabled(true);
        return argc;
    }

    Application m_application;
};

/// The inspector over the empty window of a host.
class Inspector
{
public:
    /// With @p measure, such as ownMilliseconds(), it measures the turns of the event loop.
    Inspector(QSize size, double (*measure)(const Work &)) : m_measure(measure)
    {
        m_window.resize(size);
        m_window.show();
        QuorvixClient::shared().show();
        QObject::connect(&m_window, &QQuickWindow::frameSwapped, [this] { ++m_frames; });
    }
    ~Inspector() { QuorvixClient::shared().hide(); }
    Q_DISABLE_COPY_MOVE(Inspector)

    [[nodiscard]] QQuickWindow &window() { return m_window; }
    [[nodiscard]] QQuickItem *item(const char *name) { return ScreenDriver::find(m_window, name); }
    void click(const char *name) { ScreenDriver::click(m_window, name); }
    void await(const char *name)
    {
        Contest::require(QTest::qWaitFor([&] { return item(name) != nullptr; }), name);
    }
    void awaitEnd(const char *name)
    {
        Contest::require(QTest::qWaitFor([&] { return item(name) == nullptr; }), name);
    }

    /// Waits until an item has come to rest, and clicks it. Returns the time that the click itself takes.
    double clickAtRest(const char *name, Qt::MouseButton button = Qt::LeftButton)
    {
        Contest::require(ScreenDriver::waitForRest(m_window, name), name);
        const QPoint at = ScreenDriver::middle(*item(name));
        m_longestTurn = 0;
        return note([&] { QTest::mouseClick(&m_window, button, {}, at); });
    }

    /// One turn of the event loop. Returns its time.
    double turn()
    {
        QThread::usleep(100); // lets other threads work
        return note([] { QCoreApplication::processEvents(); });
    }

    /// Measures, as a turn of the event loop.
    double note(const Work &work)
    {
        const double time = m_measure(work);
        m_longestTurn = std::max(m_longestTurn, time);
        return time;
    }

    /// How many frames have ended.
    [[nodiscard]] int frames() const { return m_frames; }
    /// The longest time without a return to the event loop since the last clickAtRest() or forgetTurns().
    [[nodiscard]] double longestTurn() const { return m_longestTurn; }
    void forgetTurns() { m_longestTurn = 0; }

    /// Goes on until no frame has been drawn for a while.
    void rest()
    {
        constexpr int calm = 150; // milliseconds
        QElapsedTimer still;
        still.start();
        for (int seen = m_frames; still.elapsed() < calm;) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
            QThread::usleep(200);
            if (std::exchange(seen, m_frames) != m_frames)
                still.restart();
        }
    }

private:
    double (*m_measure)(const Work &);
    QQuickWindow m_window;
    int m_frames = 0;
    double m_longestTurn = 0;
};

} // namespace Screens
