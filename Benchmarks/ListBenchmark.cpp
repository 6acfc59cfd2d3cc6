// Measures the screen of the request list over 100,000 traces, with its frames: opening, a keystroke of
// search, a new record and scrolling, beside Qt's own list.

#include "Benchmarks/ListSamples.h"
#include "Benchmarks/Report.h"
#include "Benchmarks/Screens.h"

#include <QtGui/QStandardItemModel>
#include <QtWidgets/QApplication>
#include <QtWidgets/QListView>

#include <vector>

using namespace Quorvix;
using namespace ListSamples;
using namespace Qt::StringLiterals;
using Contest::require;
using Screens::processorMilliseconds;

namespace {

constexpr QSize tablet(820, 1180);
/// What a user types, letter by letter.
constexpr const char *typed = "products/99";
/// What a user searches while exchanges arrive.
constexpr const char *searched = "page";
constexpr const char *processorAndFrame = "CPU of the main thread, with the frame, software";
constexpr const char *clickToFrame = "CPU of the main thread, click to first frame, software";

/// A row without a peer, whose goal is a number of milliseconds.
void add(const char *metric, const char *place, double value, const char *goal, double goalValue)
{
    Report::add({.metric = metric,
                 .place = place,
                 .unit = "ms",
                 .ours = value,
                 .goal = goal,
                 .goalValue = goalValue});
}

bool matches(int number, const QString &search)
{
    return (urlText(number) + u"\nGET"_s).contains(search, Qt::CaseInsensitive);
}

/// How many of the recorded URLs contain a text.
int matching(const QString &search)
{
    int count = 0;
    for (int i = 0; i < many; ++i)
        count += matches(i, search) ? 1 : 0;
    return count;
}

class Inspector : public Screens::Inspector
{
public:
    explicit Inspector(QSize size) : Screens::Inspector(size, processorMilliseconds) { rest(); }

    [[nodiscard]] int rows() { return item("QXRequestList")->property("count").toInt(); }

    /// How long the main thread works from an event, whose time is known, to the end of the first frame after
    /// a condition has become true. Without the time in which it waits, because Qt delays a frame by 5 ms on
    /// a display without vertical synchronisation.
    template<typename Condition>
    double busyUntilFrame(double event, const Condition &isThere)
    {
        double busy = event;
        QDeadlineTimer limit(20'000);
        for (bool holds = isThere(); !limit.hasExpired();) {
            const int seen = frames();
            busy += turn();
            if (holds && frames() != seen)
                return busy;
            holds = holds || isThere();
        }
        require(false, "a frame");
        return 0;
    }

    double open()
    {
        const double time =
            busyUntilFrame(clickAtRest("QXFloatingButton"), [&] { return item("QXRequestRow") != nullptr; });
        rest();
        require(rows() >= many, "all rows");
        return time;
    }
    void close()
    {
        click("QXCloseButton");
        awaitEnd("QXRequestListView");
        rest();
    }
    void clearSearch()
    {
        click("QXSearchClearButton");
        rest();
        require(rows() >= many, "all rows after a search");
    }
};

void measureOpening(Inspector &inspector)
{
    QStandardItemModel model;
    for (int i = many; i-- > 0;)
        model.appendRow(new QStandardItem(urlText(i)));
    const auto openListView = [&] {
        QListView view;
        view.setUniformItemSizes(true);
        view.setModel(&model);
        view.resize(Screens::phone);
        view.show();
        require(!view.grab().isNull() && view.indexAt({5, 5}).isValid(), "QListView");
    };
    const double first = inspector.open();
    const double firstPeer = processorMilliseconds(openListView);
    std::vector<double> times;
    std::vector<double> peers;
    for (int round = 0; round < Contest::rounds; ++round) {
        inspector.close();
        times.push_back(inspector.open());
        peers.push_back(processorMilliseconds(openListView));
    }
    const auto report = [](const char *metric, double ours, double peer) {
        Report::add({.metric = metric,
                     .place = clickToFrame,
                     .unit = "ms",
                     .ours = ours,
                     .peer = Report::Other{"QListView on a QStandardItemModel", peer},
                     .goal = "50 ms",
                     .goalValue = 50});
    };
    report("open the list at 100,000, the first time", first, firstPeer);
    report("open the list at 100,000 again", Contest::median(times), Contest::median(peers));
}

void measureTyping(Inspector &inspector, const char *metric)
{
    std::vector<int> expected;
    for (const char *end = typed; *end; ++end)
        expected.push_back(matching(QString::fromLatin1(typed, end + 1 - typed)));
    inspector.click("QXSearchField");
    inspector.rest();
    std::vector<double> slowest;
    for (int round = 0; round < 5; ++round) {
        double longest = 0;
        for (size_t i = 0; i < expected.size(); ++i) {
            const double key = processorMilliseconds([&] { QTest::keyClick(&inspector.window(), typed[i]); });
            const double time =
                inspector.busyUntilFrame(key, [&] { return inspector.rows() == expected[i]; });
            if (round == 0)
                std::printf("    key %c %8.2f ms, %d rows\n", typed[i], time, inspector.rows());
            longest = std::max(longest, time);
            inspector.rest();
            require(inspector.rows() == expected[i], "the rows of a search");
        }
        slowest.push_back(longest);
        inspector.clearSearch();
    }
    add(metric, "CPU of the main thread, key to the frame with all rows, software", Contest::median(slowest),
        "16 ms", 16);
}

/// Measures records of which each is shown, if it matches the search.
void measureRecords(Inspector &inspector, const QString &search, const char *metric, const char *withFrame)
{
    static int number = 10 * many;
    std::vector<double> models;
    std::vector<double> withFrames;
    while (models.size() < 15) {
        if (!matches(++number, search))
            continue;
        const URLRequest request(QUrl(urlText(number)));
        const int rows = inspector.rows();
        models.push_back(processorMilliseconds([&] {
            recorder().record(identifier(number), request);
            QCoreApplication::sendPostedEvents();
        }));
        require(inspector.rows() == rows + 1, "a row for a new record");
        withFrames.push_back(inspector.busyUntilFrame(models.back(), [] { return true; }));
        inspector.rest();
    }
    add(metric, "CPU of the main thread, without the frame", Contest::median(models), "1 ms", 1);
    Report::add(
        {.metric = withFrame, .place = processorAndFrame, .unit = "ms", .ours = Contest::median(withFrames)});
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
        const double moved =
            processorMilliseconds([&] { QTest::mouseMove(&inspector.window(), bar + QPoint(0, y)); });
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
        add(metric, "CPU of the main thread, worst frame, software",
            *std::max_element(times.begin(), times.end()), "16 ms", 16);
        std::printf("    median %.2f ms of %d frames\n", Contest::median(times), int(times.size()));
    };
    report("drag the scroll bar through 100,000 rows", dragged);
    report("flick the list", flicked);
}

} // namespace

int main(int argc, char *argv[])
{
    const Screens::Program<QApplication> program(argc, argv, "ListBenchmark");
    fillRecorder(many);
    {
        Inspector inspector(Screens::phone);
        measureOpening(inspector);
        measureTyping(inspector, "type a search at 100,000, slowest key, phone");
        measureRecords(inspector, {}, "a new record at 100,000", "a new record at 100,000, with its frame");
        inspector.click("QXSearchField");
        for (const char *key = searched; *key; ++key)
            QTest::keyClick(&inspector.window(), *key);
        inspector.rest();
        measureRecords(inspector, QString::fromLatin1(searched), "a new record at 100,000 while searching",
                       "a new record at 100,000 while searching, with its frame");
        inspector.clearSearch();
        measureScrolling(inspector);
    }
    // The same exchanges as at first, so that as many rows are expected.
    fillRecorder(many);
    Inspector inspector(tablet);
    inspector.open();
    measureTyping(inspector, "type a search at 100,000, slowest key, tablet");
    return 0;
}
