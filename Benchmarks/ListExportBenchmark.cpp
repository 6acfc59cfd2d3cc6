// Measures for how long the main thread does nothing else while a user exports the whole list, copies and
// saves the file, and cancels an export; for comparison, the same with ten exchanges. The time for which the
// thread waits for a processor does not count, because other programs decide about it.

#include "Quorvix/QXRequestRecorder.h"

#include "Benchmarks/Report.h"
#include "Benchmarks/Screens.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtGui/QClipboard>

#include <chrono>
#include <map>
#include <vector>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Contest::require;

namespace {

using namespace std::chrono_literals;

constexpr int turns = 5;
constexpr auto longestAction = 60s;
/// Memory is returned to the system a little later than it is freed.
constexpr auto untilReturned = 700ms;
constexpr auto untilDrawn = 250ms;

QByteArray bodyOf(qsizetype size, int number)
{
    QByteArray body = "[";
    do {
        body += "{\"id\":" + QByteArray::number(number) +
                ",\"name\":\"An item of the store\",\"price\":12.5,\"tags\":[\"red\",\"blue\"]},";
    } while (body.size() < size);
    body.back() = ']';
    return body;
}

void record(int count, qsizetype bodySize)
{
    auto &recorder = QXRequestRecorder::shared();
    recorder.clear();
    recorder.setBodyBudget({});
    for (int i = 0; i < count; ++i) {
        const QUrl url(u"https://api.example.com/v1/products/%1?page=%2"_s.arg(i).arg(i % 7));
        URLRequest request(url);
        request.setValue(u"application/json"_s, u"Accept"_s);
        const QString id = QString::number(i);
        recorder.record(id, request);
        recorder.complete(
            id,
            NSHTTPURLResponse::create(url, 200, u"HTTP/1.1"_s, {{u"Content-Type"_s, u"application/json"_s}}),
            bodyOf(bodySize, i), {});
    }
}

/// The longest stretch of each action, in milliseconds.
using Stretches = std::map<QByteArray, std::vector<double>>;

/// The list over an empty window of a host.
class List : public Screens::Inspector
{
public:
    List() : Screens::Inspector(Screens::phone, Screens::ownMilliseconds)
    {
        click("QXFloatingButton");
        require(ScreenDriver::waitForRest(window(), "QXExportButton"), "the list");
    }

    [[nodiscard]] bool has(const char *name) { return item(name) != nullptr; }

    /// Clicks an item, waits for the end of what follows and then for as long as something may follow that.
    template<typename Condition>
    void act(const char *action, const char *name, std::chrono::milliseconds after, const Condition &isDone)
    {
        clickAtRest(name);
        const QDeadlineTimer limit(longestAction);
        QDeadlineTimer calm(QDeadlineTimer::Forever);
        while (!calm.hasExpired() && !limit.hasExpired()) {
            turn();
            if (calm.isForever() && isDone())
                calm.setRemainingTime(after);
        }
        require(!limit.hasExpired(), action);
        m_stretches[action].push_back(longestTurn());
    }

    void pressEscape() { QTest::keyClick(&window(), Qt::Key_Escape); }

    [[nodiscard]] Stretches take() { return std::exchange(m_stretches, {}); }

private:
    Stretches m_stretches;
};

/// The size of the only archive in a folder.
qint64 archiveSize(const QString &folder)
{
    const auto files = QDir(folder).entryInfoList({u"*.har"_s});
    return files.size() == 1 ? files.first().size() : 0;
}

/// Exports, copies, saves and closes.
void exportOnce(List &list, const QString &folder, qint64 leastSize)
{
    list.act("export", "QXExportButton", untilReturned, [&] { return list.has("QXActivitySheet"); });
    require(list.has("QXActivityPreview") && archiveSize(folder) > leastSize, "an archive");
    list.act("copy", "QXActivityCopy", untilDrawn, [] { return true; });
    require(QGuiApplication::clipboard()->text().endsWith(".har"_L1), "a copy");
    list.act("ask where to save", "QXActivitySaveAs", untilDrawn, [&] { return list.has("QXActivitySave"); });
    list.act("save", "QXActivitySave", untilDrawn, [&] { return list.has("QXActivityOutcome"); });
    require(archiveSize(qEnvironmentVariable("HOME")) > leastSize, "a saved archive");
    list.act("close", "QXActivityDone", untilReturned, [&] { return !list.has("QXActivitySheet"); });
}

/// Begins an export and cancels it, unless it is over before its progress is shown.
/// A cancelled export leaves no file.
void cancelOnce(List &list, const QString &folder)
{
    bool isCancelled = false;
    list.act("cancel", "QXExportButton", untilReturned, [&] {
        if (!isCancelled && list.has("QXProgressCancel")) {
            list.pressEscape();
            isCancelled = true;
        }
        return isCancelled ? !list.has("QXProgressCard") : list.has("QXActivitySheet");
    });
    if (isCancelled)
        require(QTest::qWaitFor([&] { return QDir(folder).isEmpty(); }, 10'000), "no file");
    else
        list.act("close", "QXActivityDone", untilReturned, [&] { return !list.has("QXActivitySheet"); });
}

Stretches use(List &list, qint64 leastSize)
{
    for (int turn = 0; turn < turns; ++turn) {
        const QTemporaryDir place(u"/tmp/ListExportBenchmark-XXXXXX"_s);
        for (const auto &[variable, name] :
             {std::pair("TMPDIR", u"exported"_s), std::pair("HOME", u"home"_s)}) {
            require(QDir(place.path()).mkdir(name), "a folder");
            qputenv(variable, QFile::encodeName(place.filePath(name)));
        }
        const QString folder = place.filePath(u"exported"_s);
        exportOnce(list, folder, leastSize);
        QFile::remove(QDir(folder).entryInfoList(QDir::Files).constFirst().filePath());
        cancelOnce(list, folder);
    }
    return list.take();
}

/// The action with the longest median.
std::pair<QByteArray, double> worst(const Stretches &stretches)
{
    std::pair<QByteArray, double> found;
    for (const auto &[action, times] : stretches) {
        std::printf("    %-20s", action.constData());
        Contest::printWaits("", times);
        if (const double time = Contest::median(times); time > found.second)
            found = {action, time};
    }
    return found;
}

void measure(List &list, const char *metric, int count, qsizetype bodySize)
{
    record(count, bodySize);
    const auto [action, longest] = worst(use(list, count * bodySize));
    const QByteArray place = "main thread, longest stretch, in \"" + action + "\"; software renderer";
    Report::add({.metric = metric,
                 .place = place.constData(),
                 .unit = "ms",
                 .ours = longest,
                 .goal = "16 ms",
                 .goalValue = 16});
}

} // namespace

int main(int argc, char *argv[])
{
    const Screens::Program<> program(argc, argv, "ListExportBenchmark");
    List list;
    measure(list, "export of 100,000 small exchanges from the list", 100'000, 100);
    measure(list, "export of 200 MB of bodies from the list", 2'000, 100'000);
    measure(list, "export of 10 exchanges, for comparison", 10, 100);
    return 0;
}
