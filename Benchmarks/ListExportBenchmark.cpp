// Measures for how long the main thread does nothing else while a user exports the whole list, copies and
// saves the file, and cancels an export; for comparison, the same with ten exchanges. The time for which the
// thread waits for a processor does not count, because other programs decide about it.

#include "Tests/ScreenDriver.h"

#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"

#include <QtCore/QDir>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include <map>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Contest::require;

namespace {

constexpr QSize phone(390, 844);
constexpr int turns = 7;
constexpr int longestAction = 60'000; // milliseconds

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

/// The time for which this thread has waited for a processor, in milliseconds; 0 where nobody knows it.
double waitForProcessor()
{
    QFile file(u"/proc/thread-self/schedstat"_s);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return 0;
    return file.read(100).split(' ').value(1).toDouble() / 1e6;
}

/// How long some work takes this thread, in milliseconds, without the time that other programs take.
double ownMilliseconds(const std::function<void()> &work)
{
    const double before = waitForProcessor();
    const double taken = Contest::milliseconds(work);
    return taken - (waitForProcessor() - before);
}

/// The longest stretch of each action, in milliseconds.
using Stretches = std::map<QByteArray, std::vector<double>>;

/// The list over an empty window of a host.
class List
{
public:
    List()
    {
        m_window.resize(phone);
        m_window.show();
        QuorvixClient::shared().show();
        ScreenDriver::click(m_window, "QXFloatingButton");
        require(ScreenDriver::waitForRest(m_window, "QXExportButton"), "the list");
    }
    ~List() { QuorvixClient::shared().hide(); }
    Q_DISABLE_COPY_MOVE(List)

    [[nodiscard]] bool has(const char *name) { return ScreenDriver::find(m_window, name) != nullptr; }

    /// Clicks an item and waits for the end of what follows and for calm.
    template<typename Condition>
    void act(const char *action, const char *item, const Condition &isDone)
    {
        require(ScreenDriver::waitForRest(m_window, item), item);
        const QPoint at = ScreenDriver::middle(*ScreenDriver::find(m_window, item));
        double longest = Contest::milliseconds([&] { QTest::mouseClick(&m_window, Qt::LeftButton, {}, at); });
        const QDeadlineTimer limit(longestAction);
        // Memory is returned to the system a little later.
        QDeadlineTimer calm(QDeadlineTimer::Forever);
        while (!calm.hasExpired() && !limit.hasExpired()) {
            QThread::usleep(100); // lets other threads work
            longest = std::max(longest, ownMilliseconds([] { QCoreApplication::processEvents(); }));
            if (calm.isForever() && isDone())
                calm.setRemainingTime(700);
        }
        require(!limit.hasExpired(), action);
        m_stretches[action].push_back(longest);
    }

    void pressEscape() { QTest::keyClick(&m_window, Qt::Key_Escape); }

    [[nodiscard]] Stretches take() { return std::exchange(m_stretches, {}); }

private:
    QQuickWindow m_window;
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
    list.act("export", "QXExportButton", [&] { return list.has("QXActivitySheet"); });
    require(list.has("QXActivityPreview") && archiveSize(folder) > leastSize, "an archive");
    list.act("copy", "QXActivityCopy", [] { return true; });
    require(QGuiApplication::clipboard()->text().endsWith(".har"_L1), "a copy");
    list.act("ask where to save", "QXActivitySaveAs", [&] { return list.has("QXActivitySave"); });
    list.act("save", "QXActivitySave", [&] { return list.has("QXActivityOutcome"); });
    require(archiveSize(qEnvironmentVariable("HOME")) > leastSize, "a saved archive");
    list.act("close", "QXActivityDone", [&] { return !list.has("QXActivitySheet"); });
}

/// Begins an export and cancels it, unless it is over before its progress is shown.
void cancelOnce(List &list, const QString &folder)
{
    bool isCancelled = false;
    list.act("cancel", "QXExportButton", [&] {
        if (!isCancelled && list.has("QXProgressCancel")) {
            list.pressEscape();
            isCancelled = true;
        }
        return isCancelled ? !list.has("QXProgressCard") : list.has("QXActivitySheet");
    });
    if (isCancelled)
        require(QDir(folder).isEmpty(), "no file");
    else
        list.act("close", "QXActivityDone", [&] { return !list.has("QXActivitySheet"); });
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
    const Stretches ours = use(list, count * bodySize);
    const auto [action, longest] = worst(ours);
    record(10, 100);
    const Stretches base = use(list, 1000);
    const double usual = worst(base).second;
    const QByteArray place = "main thread, longest stretch, in \"" + action + "\"; software renderer";
    Report::add({metric,
                 place.constData(),
                 "ms",
                 longest,
                 {},
                 Report::Other{"with 10 exchanges", usual},
                 false,
                 "16 ms"});
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QStandardPaths::setTestModeEnabled(true);
    const QGuiApplication application(argc, argv);
    QCoreApplication::setOrganizationName(u"QuorvixBenchmarks"_s);
    QCoreApplication::setApplicationName(u"ListExportBenchmark"_s);
    List list;
    measure(list, "export of 100,000 small exchanges from the list", 100'000, 100);
    measure(list, "export of 200 MB of bodies from the list", 2'000, 100'000);
}
