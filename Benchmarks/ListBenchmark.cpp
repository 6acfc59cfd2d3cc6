// Measures the screen of the request list over 100,000 traces, with its frames: opening, a keystroke of
// search, a new record and scrolling, beside Qt's own list.

#include "Tests/ScreenDriver.h"

#include "Quorvix/QuorvixClient.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/ListSamples.h"
#include "Benchmarks/Report.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtCore/QThread>
#include <QtGui/QStandardItemModel>
#include <QtWidgets/QApplication>
#include <QtWidgets/QListView>

#include <algorithm>
#include <ctime>
#include <functional>
#include <vector>

using namespace Quorvix;
using namespace ListSamples;
using namespace Qt::StringLiterals;
using Contest::require;

namespace {

constexpr QSize phone(390, 844);
constexpr QSize tablet(820, 1180);
/// What a user types, letter by letter.
constexpr const char *typed = "products/99";

// --- The screen
// ---------------------------------------------------------------------------------------------

/// The time for which this thread has had a processor, in milliseconds. On a busy machine a frame of a few
/// milliseconds often waits for one, which says nothing about the frame.
double threadTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

double milliseconds(const std::function<void()> &work)
{
    const double start = threadTime();
    work();
    return threadTime() - start;
}

/// The inspector over an empty window of a host.
class Inspector
{
public:
    explicit Inspector(QSize size)
    {
        m_window.resize(size);
        m_window.show();
        QuorvixClient::shared().show();
        QObject::connect(&m_window, &QQuickWindow::frameSwapped, [this] { ++m_frames; });
        rest();
    }
    ~Inspector() { QuorvixClient::shared().hide(); }
    Inspector(const Inspector &) = delete;
    Inspector &operator=(const Inspector &) = delete;

    QQuickItem *item(const char *name) { return ScreenDriver::find(m_window, name); }
    QQuickWindow &window() { return m_window; }
    int rows() { return item("QXRequestList")->property("count").toInt(); }

    /// How long the main thread works from an event to the end of the first frame for which a condition
    /// holds. Without the time in which it waits, because Qt delays a frame by 5 ms on a display without
    /// vertical synchronisation.
    template<typename Condition>
    double busyUntilFrame(const std::function<void()> &event, const Condition &isThere)
    {
        m_longestTurn = 0;
        double busy = milliseconds(event);
        QDeadlineTimer limit(20'000);
        for (bool holds = false; !limit.hasExpired();) {
            const int seen = m_frames;
            busy += turn();
            if (holds && m_frames != seen)
                return busy;
            holds = holds || isThere();
        }
        require(false, "a frame");
        return 0;
    }

    /// Goes on until no frame has been drawn for a while.
    void rest()
    {
        QElapsedTimer still;
        still.start();
        for (int seen = m_frames; still.elapsed() < 300;) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
            QThread::usleep(200);
            if (std::exchange(seen, m_frames) != m_frames)
                still.restart();
        }
    }

    double turn()
    {
        QThread::usleep(100); // lets other threads work
        const double time = milliseconds([] { QCoreApplication::processEvents(); });
        m_longestTurn = std::max(m_longestTurn, time);
        return time;
    }
    [[nodiscard]] int frames() const { return m_frames; }
    /// The longest time without a return to the event loop, in milliseconds.
    [[nodiscard]] double longestTurn() const { return m_longestTurn; }
    void forgetTurns() { m_longestTurn = 0; }

    double open()
    {
        require(ScreenDriver::waitForRest(m_window, "QXFloatingButton"), "the button");
        const QPoint at = ScreenDriver::middle(*item("QXFloatingButton"));
        const double time = busyUntilFrame([&] { QTest::mouseClick(&m_window, Qt::LeftButton, {}, at); },
                                           [&] { return item("QXRequestRow") != nullptr; });
        rest();
        return time;
    }
    void close()
    {
        ScreenDriver::click(m_window, "QXCloseButton");
        require(QTest::qWaitFor([&] { return !item("QXRequestListView"); }), "the end of the list");
        rest();
    }

private:
    QQuickWindow m_window;
    int m_frames = 0;
    double m_longestTurn = 0;
};

double openListView()
{
    std::vector<double> times;
    for (int round = 0; round < 3; ++round) {
        times.push_back(milliseconds([] {
            QStandardItemModel model;
            QListView view;
            view.setUniformItemSizes(true);
            for (int i = many; i-- > 0;)
                model.appendRow(new QStandardItem(urlText(i)));
            view.setModel(&model);
            view.resize(phone);
            view.show();
            require(!view.grab().isNull(), "QListView");
        }));
    }
    return Contest::median(times);
}

void measureOpening(Inspector &inspector)
{
    std::vector<double> times;
    const double first = inspector.open();
    for (int round = 0; round < 5; ++round) {
        inspector.close();
        times.push_back(inspector.open());
    }
    const Report::Other peer{"QListView on a QStandardItemModel", openListView()};
    Report::add({"open the list at 100,000, the first time",
                 "CPU of the main thread, click to first frame, software",
                 "ms",
                 first,
                 peer,
                 {},
                 false,
                 "50 ms"});
    Report::add({"open the list at 100,000 again",
                 "CPU of the main thread, click to first frame, software",
                 "ms",
                 Contest::median(times),
                 peer,
                 {},
                 false,
                 "50 ms"});
}

void measureTyping(Inspector &inspector, const char *metric)
{
    ScreenDriver::click(inspector.window(), "QXSearchField");
    inspector.rest();
    std::vector<double> slowest;
    for (int round = 0; round < 5; ++round) {
        double longest = 0;
        for (const char *key = typed; *key; ++key) {
            const double time = inspector.busyUntilFrame([&] { QTest::keyClick(&inspector.window(), *key); },
                                                         [] { return true; });
            if (round == 0)
                std::printf("    key %c %8.2f ms, %d rows\n", *key, time, inspector.rows());
            longest = std::max(longest, time);
            inspector.rest();
        }
        slowest.push_back(longest);
        ScreenDriver::click(inspector.window(), "QXSearchClearButton");
        inspector.rest();
    }
    Report::add({metric,
                 "CPU of the main thread, key to frame, software",
                 "ms",
                 Contest::median(slowest),
                 {},
                 {},
                 false,
                 "16 ms"});
}

void measureRecords(Inspector &inspector, const char *metric, const char *withFrame)
{
    static int number = 10 * many;
    std::vector<double> models;
    std::vector<double> frames;
    for (int i = 0; i < 15; ++i) {
        const URLRequest request(QUrl(urlText(++number)));
        double model = 0;
        frames.push_back(inspector.busyUntilFrame(
            [&] {
                model = milliseconds([&] {
                    recorder().record(identifier(number), request);
                    QCoreApplication::sendPostedEvents();
                });
            },
            [] { return true; }));
        models.push_back(model);
        inspector.rest();
    }
    Report::add({metric,
                 "CPU of the main thread, without the frame",
                 "ms",
                 Contest::median(models),
                 {},
                 {},
                 false,
                 "1 ms"});
    Report::add(
        {withFrame, "CPU of the main thread, with the frame, software", "ms", Contest::median(frames)});
}

void measureScrolling(Inspector &inspector)
{
    QQuickItem *const list = inspector.item("QXRequestList");
    const QPoint bar(int(list->mapToScene(QPointF(list->width() - 5, 0)).x()), 0);
    const int top = int(list->mapToScene({}).y()) + 60;
    const int bottom = int(list->mapToScene(QPointF(0, list->height())).y()) - 10;
    const auto settleFrame = [&] {
        inspector.forgetTurns();
        const int seen = inspector.frames();
        for (QDeadlineTimer limit(200); inspector.frames() == seen && !limit.hasExpired();)
            inspector.turn();
        return inspector.longestTurn();
    };
    ScreenDriver::turnWheel(inspector.window(), QPoint(100, 400), 1);
    inspector.rest();
    std::vector<double> dragged;
    QTest::mousePress(&inspector.window(), Qt::LeftButton, {}, bar + QPoint(0, top));
    for (int y = top; y < bottom; y += 3) {
        const double moved = milliseconds([&] { QTest::mouseMove(&inspector.window(), bar + QPoint(0, y)); });
        dragged.push_back(moved + settleFrame());
    }
    QTest::mouseRelease(&inspector.window(), Qt::LeftButton, {}, bar + QPoint(0, bottom));
    require(list->property("contentY").toReal() > many * 20.0, "a drag of the scroll bar");
    inspector.rest();

    std::vector<double> flicked;
    QMetaObject::invokeMethod(list, "flick", Q_ARG(qreal, 0), Q_ARG(qreal, 8000));
    while (list->property("moving").toBool() && flicked.size() < 400)
        flicked.push_back(settleFrame());
    require(flicked.size() > 50, "a flick");
    const auto report = [](const char *metric, const std::vector<double> &times) {
        Report::add({metric,
                     "CPU of the main thread, worst frame, software",
                     "ms",
                     *std::max_element(times.begin(), times.end()),
                     {},
                     {},
                     false,
                     "16 ms"});
        std::printf("    median %.2f ms of %d frames\n", Contest::median(times), int(times.size()));
    };
    report("drag the scroll bar through 100,000 rows", dragged);
    report("flick the list", flicked);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QStandardPaths::setTestModeEnabled(true);
    const QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(u"QuorvixBenchmarks"_s);
    QCoreApplication::setApplicationName(u"ListBenchmark"_s);
    fillRecorder(many);
    for (const bool isTablet : {false, true}) {
        Inspector inspector(isTablet ? tablet : phone);
        if (isTablet)
            inspector.open();
        else
            measureOpening(inspector);
        measureTyping(inspector, isTablet ? "type a search at 100,000, slowest key, tablet"
                                          : "type a search at 100,000, slowest key, phone");
        if (isTablet)
            continue;
        measureRecords(inspector, "a new record at 100,000", "a new record at 100,000, with its frame");
        ScreenDriver::click(inspector.window(), "QXSearchField");
        for (const char *key = "page"; *key; ++key)
            QTest::keyClick(&inspector.window(), *key);
        inspector.rest();
        measureRecords(inspector, "a new record at 100,000 while searching",
                       "a new record at 100,000 while searching, with its frame");
        ScreenDriver::click(inspector.window(), "QXSearchClearButton");
        inspector.rest();
        measureScrolling(inspector);
    }
    return 0;
}
