// Plays each movement of the screens at the sizes of a phone and a tablet, with a finger or a click, and
// measures what its frames cost the main thread.

#include "Benchmarks/Exchanges.h"
#include "Benchmarks/ListSamples.h"
#include "Benchmarks/Report.h"
#include "Benchmarks/Screens.h"

#include "Quorvix/QXBreakpointStore.h"

#include <QtGui/QPointingDevice>

#include <memory>
#include <vector>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Contest::require;
using Screens::processorMilliseconds;

namespace {

constexpr int listed = 10'000;
constexpr int rules = 40;
constexpr int rounds = 5;
/// How far a finger goes for each frame, in pixels, which is fast.
constexpr int pace = 12;

/// An exchange as an application of today has it, with a body that is shown.
void recordExchange()
{
    const QUrl url(u"https://api.example.com/v1/cart"_s);
    URLRequest request(url);
    request.allHTTPHeaderFields.emplace();
    for (const auto &[name, value] : Exchanges::requestHeaders(1))
        request.allHTTPHeaderFields->insert(QString::fromLatin1(name), QString::fromLatin1(value));
    NSHeaderFields headers;
    for (const auto &[name, value] : Exchanges::responseHeaders(1, 2000))
        headers.emplace(QString::fromLatin1(name), QString::fromLatin1(value));
    const QByteArray body =
        "{\"items\":[" + QByteArray("{\"id\":1,\"title\":\"A thing\"},").repeated(60) + "{}]}";
    auto &recorder = QXRequestRecorder::shared();
    recorder.record(u"cart"_s, request);
    recorder.complete(u"cart"_s, NSHTTPURLResponse::create(url, 200, u"HTTP/1.1"_s, headers), body, {});
}

/// The frames of a movement in all rounds, in milliseconds of the main thread. The first one of a round, in
/// which nothing moves yet, makes the screen that comes.
struct Movement
{
    const char *metric;
    std::vector<double> firstFrames = {};
    std::vector<double> frames = {};
};

/// The inspector on a device, and a finger.
class Device : public Screens::Inspector
{
public:
    explicit Device(QSize size) : Screens::Inspector(size, processorMilliseconds) { rest(); }

    /// From here on, frames belong to a movement. A frame has what the main thread does from the end of the
    /// last frame to its own.
    void begin(Movement &movement)
    {
        m_movement = &movement;
        m_isFirst = true;
        m_busy = 0;
    }

    void click(const char *name)
    {
        begin(name);
        playToTheEnd();
    }

    /// Clicks, and goes on until what comes is on its way.
    void begin(const char *name)
    {
        const QPoint at = middle(name);
        m_busy += note([&] { QTest::mouseClick(&window(), Qt::LeftButton, {}, at); });
        for (const int seen = frames(); frames() < seen + 4;)
            play();
    }

    void touch(QPoint at)
    {
        m_at = at;
        send([&](auto &finger) { finger.press(0, at, &window()); });
    }

    /// Moves the finger, with a frame for each step.
    void move(QPoint by)
    {
        const int steps = std::max(std::abs(by.x()), std::abs(by.y())) / pace;
        const QPoint from = m_at;
        for (int step = 1; step <= steps; ++step) {
            m_at = from + by * step / steps;
            send([&](auto &finger) { finger.move(0, m_at, &window()); });
            const int seen = frames();
            for (QDeadlineTimer limit(50); frames() == seen && !limit.hasExpired();)
                play();
        }
    }

    void lift()
    {
        send([&](auto &finger) { finger.release(0, m_at, &window()); });
        playToTheEnd();
    }

    void requireThat(const char *name, bool isThere) { require(!item(name) == !isThere, name); }

    /// The middle of the first one of this name.
    QPoint middle(const char *name)
    {
        const auto found = ScreenDriver::findAll(window(), name);
        require(!found.isEmpty(), name);
        return ScreenDriver::middle(*found.constFirst());
    }

private:
    void send(const std::function<void(QTest::QTouchEventSequence &)> &write)
    {
        m_busy += note([&] {
            QTest::QTouchEventSequence sequence = QTest::touchEvent(&window(), m_finger.get());
            write(sequence);
            sequence.commit();
        });
    }

    void play()
    {
        const int seen = frames();
        m_busy += turn();
        if (frames() == seen)
            return;
        (std::exchange(m_isFirst, false) ? m_movement->firstFrames : m_movement->frames).push_back(m_busy);
        m_busy = 0;
    }

    /// Goes on until no frame has been drawn for a while.
    void playToTheEnd()
    {
        constexpr int calm = 200; // milliseconds
        QElapsedTimer still;
        still.start();
        for (int seen = frames(); still.elapsed() < calm;) {
            play();
            if (std::exchange(seen, frames()) != frames())
                still.restart();
        }
    }

    std::unique_ptr<QPointingDevice> m_finger{QTest::createTouchDevice()};
    Movement *m_movement = nullptr;
    QPoint m_at;
    bool m_isFirst = false;
    double m_busy = 0;
};

double longest(const std::vector<double> &frames)
{
    return *std::max_element(frames.begin(), frames.end());
}

struct Movements
{
    Movement open{"the list opens"};
    Movement openTurned{"the list opens, and a finger turns it round"};
    Movement push{"a row is opened (push)"};
    Movement pop{"Back (pop)"};
    Movement swipe{"a finger swipes back from the edge"};
    Movement swipeEnds{"the swiped screen leaves"};
    Movement sheetUp{"a sheet comes up"};
    Movement sheetDown{"a sheet goes down"};
    Movement sheetDrag{"a finger drags a sheet down"};
    Movement sheetPull{"a finger pulls a sheet by its content, and it leaves"};
    Movement sheetEnds{"the dragged sheet leaves"};
    Movement button{"a finger drags the button and releases it"};
    Movement close{"the list closes"};

    [[nodiscard]] std::vector<const Movement *> all() const
    {
        return {&open,      &openTurned, &push,      &pop,       &swipe,  &swipeEnds, &sheetUp,
                &sheetDown, &sheetDrag,  &sheetPull, &sheetEnds, &button, &close};
    }
};

void play(Device &screen, Movements &movements)
{
    screen.begin(movements.openTurned);
    screen.begin("QXFloatingButton");
    screen.touch({200, 700});
    screen.move({0, 60});
    screen.lift();
    screen.requireThat("QXRequestListView", false);
    screen.begin(movements.open);
    screen.click("QXFloatingButton");

    screen.begin(movements.push);
    screen.click("QXRequestRow");
    screen.requireThat("QXRequestDetailsView", true);
    screen.begin(movements.pop);
    screen.click("QXBackButton");
    screen.requireThat("QXRequestDetailsView", false);
    screen.begin(movements.push);
    screen.click("QXRequestRow");
    screen.begin(movements.swipe);
    screen.touch({4, 400});
    screen.move({300, 0});
    screen.begin(movements.swipeEnds);
    screen.lift();
    screen.requireThat("QXRequestDetailsView", false);

    screen.begin(movements.sheetUp);
    screen.click("QXBreakpointsButton");
    screen.requireThat("QXSheetDone", true);
    screen.begin(movements.sheetDown);
    screen.click("QXSheetDone");
    screen.requireThat("QXSheetDone", false);
    screen.begin(movements.sheetUp);
    screen.click("QXBreakpointsButton");
    screen.begin(movements.sheetDrag);
    screen.touch(screen.middle("QXSheetDone") + QPoint(150, 0));
    screen.move({0, 350});
    screen.begin(movements.sheetEnds);
    screen.lift();
    screen.requireThat("QXSheetDone", false);

    screen.begin(movements.sheetUp);
    screen.click("QXBreakpointsButton");
    screen.begin(movements.sheetPull);
    screen.touch(screen.middle("QXBreakpointRow"));
    screen.move({0, 300});
    screen.lift();
    screen.requireThat("QXSheetDone", false);

    screen.begin(movements.button);
    screen.touch(screen.middle("QXFloatingButton"));
    screen.move({200, -400});
    screen.move({-200, 400});
    screen.lift();

    screen.begin(movements.close);
    screen.click("QXCloseButton");
    screen.requireThat("QXRequestListView", false);
}

void report(const char *metric, double ours, const char *what, const char *device, double goal)
{
    const QByteArray place = QByteArray("CPU of the main thread, ") + what + ", " + device + ", software";
    const QByteArray goalText = QByteArray::number(goal) + " ms";
    Report::add({.metric = metric,
                 .place = place.constData(),
                 .unit = "ms",
                 .ours = ours,
                 .goal = goalText.constData(),
                 .goalValue = goal});
}

void measure(const char *device, QSize size)
{
    Device screen(size);
    Movements movements;
    for (int round = 0; round < rounds; ++round)
        play(screen, movements);
    for (const Movement *const movement : movements.all()) {
        require(!movement->frames.empty(), movement->metric);
        report(movement->metric, longest(movement->frames), "longest frame", device, 16);
        std::printf("    median %.2f ms of %d frames; first frames up to %.2f ms\n",
                    Contest::median(movement->frames), int(movement->frames.size()),
                    longest(movement->firstFrames));
    }
    report("from the click on the button to the list's first frame", longest(movements.open.firstFrames),
           "longest of all", device, 50);
    report("from the click on a row to its details' first frame", longest(movements.push.firstFrames),
           "longest of all", device, 50);
}

} // namespace

int main(int argc, char *argv[]) // NOLINT(bugprone-exception-escape)
{
    const Screens::Program program(argc, argv, "MotionBenchmark");
    ListSamples::fillRecorder(listed);
    recordExchange();
    for (int i = 0; i < rules; ++i)
        QXBreakpointStore::shared().insert(
            *QXBreakpointKey::make(QUrl(ListSamples::urlText(i)), QStringLiteral("GET")));

    for (const auto &[device, size] :
         {std::pair("phone", Screens::phone), std::pair("tablet", QSize(1024, 768))})
        measure(device, size);
    return 0;
}
