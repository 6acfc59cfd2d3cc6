// What a large body costs: the time of each long task, the memory at its peak, the longest time to its end
// after it is cancelled, and the longest pause between two reports of its progress. The first argument is the
// size of the body in megabytes, the second one a part of the name of the only body that is measured.

#include "Quorvix/QXApiMockGenerator.h"
#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXBodyText.h"
#include "Quorvix/QXPayloadDecoder.h"
#include "Quorvix/QXRawDetails.h"
#include "Quorvix/QXRequestTrace.h"
#include "Quorvix/QXSwiftModelExport.h"
#include "Quorvix/QXTaskProgress.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"
#include "Benchmarks/Samples.h"
#include "Tests/ProcessStatus.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

#include <malloc.h>

#include <atomic>
#include <ctime>
#include <thread>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Contest::require;

namespace {

constexpr qsizetype megabyte = 1'000'000;

/// Records of eight values, ten million of them in 200 MB.
QByteArray records(qsizetype size)
{
    QByteArray body = "{\"items\":[";
    body.reserve(size + 1000);
    for (int i = 0; body.size() < size; ++i) {
        body +=
            R"({"id":)" + QByteArray::number(i) + R"(,"name":"item )" + QByteArray::number(i * 7919LL) +
            R"(","tags":["red","blue"],"price":12.5,"note":"a note about this item that a person would read"},)";
    }
    body.chop(1);
    return body + "]}";
}

QByteArray plainText(qsizetype size)
{
    const QByteArray line = "A line of text that a person would read, of a usual length; it is no JSON.\n";
    return line.repeated(size / line.size() + 1);
}

QXRequestTrace traceOf(const QByteArray &body)
{
    QXRequestTrace trace(u"1"_s, URLRequest(QUrl(u"https://api.example.com/api/v1/items"_s)));
    trace.response =
        QXResponseTrace(NSHTTPURLResponse(*trace.url, 200, u"HTTP/1.1"_s, {}), std::optional(body));
    return trace;
}

struct Task
{
    const char *name;
    /// Returns whether there is a result; freeing it is not a part of the task.
    std::function<bool(QXTaskProgress *, std::shared_ptr<void> &result)> run;
};

template<typename Value>
bool keep(std::shared_ptr<void> &result, Value value)
{
    const bool isThere = bool(value);
    result = std::make_shared<Value>(std::move(value));
    return isThere;
}

std::vector<Task> tasksFor(const QByteArray &body)
{
    const auto trace = std::make_shared<QXRequestTrace>(traceOf(body));
    return {
        {"tree",
         [=](QXTaskProgress *progress, auto &result) {
             return keep(result, QXApiTreeParser::parse(QByteArrayView(body), progress));
         }},
        {"Swift models",
         [=](QXTaskProgress *progress, auto &result) {
             return keep(result, QXSwiftModelExport::exportTrace(*trace, progress));
         }},
        {"mock file",
         [=](QXTaskProgress *progress, auto &result) {
             return keep(result, QXApiMockGenerator::exportMock(*trace, progress));
         }},
        {"archive",
         [=](QXTaskProgress *progress, auto &result) {
             return keep(result,
                         QXArchiveWriter::exportTrace(*trace, std::chrono::system_clock::now(), progress));
         }},
        {"readable text",
         [=](QXTaskProgress *progress, auto &result) {
             return keep(result, QXBodyText::readable(body, progress));
         }},
        {"raw details",
         [=](QXTaskProgress *progress, auto &result) {
             auto text = rawDetails(*trace, progress);
             const bool isThere = !text.isEmpty();
             result = std::make_shared<QString>(std::move(text));
             return isThere;
         }},
        {"search for Base64",
         [=](QXTaskProgress *progress, auto &) {
             static_cast<void>(QXPayloadDecoder::hasEncodedCandidate(QByteArrayView(body), progress));
             return !progress || !progress->isCancelled();
         }},
        {"decode",
         [=](QXTaskProgress *progress, auto &result) {
             keep(result, QXPayloadDecoder::decodePayload(QByteArrayView(body), progress));
             return !progress || !progress->isCancelled();
         }},
    };
}

/// The longest time in which the progress did not move, in milliseconds, and the time of the task.
std::pair<double, double> longestPause(const Task &task)
{
    QXTaskProgress progress;
    std::atomic<bool> isDone = false;
    std::jthread work([&] {
        std::shared_ptr<void> result;
        task.run(&progress, result);
        isDone = true;
    });
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    Clock::time_point last = start;
    Clock::duration longest{};
    for (double fraction = 0; !isDone; std::this_thread::sleep_for(200us)) {
        const Clock::time_point now = Clock::now();
        longest = std::max(longest, now - last);
        if (progress.fraction() != fraction)
            last = now;
        fraction = progress.fraction();
    }
    const auto milliseconds = [](Clock::duration time) {
        return std::chrono::duration<double, std::milli>(time).count();
    };
    return {milliseconds(longest), milliseconds(Clock::now() - start)};
}

/// The longest time from the cancellation to the end, in milliseconds.
double longestEnd(const Task &task, double time)
{
    double longest = 0;
    for (const double part : {0.1, 0.3, 0.5, 0.7, 0.9}) {
        QXTaskProgress progress;
        double end = 0;
        std::atomic<bool> isDone = false;
        std::jthread work([&] {
            std::shared_ptr<void> result;
            task.run(&progress, result);
            isDone = true;
        });
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(part * time));
        const bool isLate = isDone;
        progress.cancel();
        end = Contest::milliseconds([&] { work.join(); });
        if (!isLate)
            longest = std::max(longest, end);
    }
    return longest;
}

void measure(const char *name, const QByteArray &body)
{
    double worstPause = 0;
    double worstEnd = 0;
    qsizetype worstPeak = 0;
    std::printf("%s: %lld MB\n", name, static_cast<long long>(body.size() / megabyte));
    for (const Task &task : tasksFor(body)) {
        malloc_trim(0);
        ProcessStatus::forgetPeak();
        const qsizetype before = ProcessStatus::field("VmRSS");
        std::shared_ptr<void> result;
        bool isThere = false;
        const std::clock_t clock = std::clock();
        const double time = Contest::milliseconds([&] { isThere = task.run(nullptr, result); });
        const double ownTime = double(std::clock() - clock) * 1000 / CLOCKS_PER_SEC;
        const qsizetype peak = ProcessStatus::field("VmHWM") - before;
        const qsizetype held = ProcessStatus::field("VmRSS") - before;
        require(before > 0, "the memory of the process is not known");
        const double freeing = Contest::milliseconds([&] { result.reset(); });
        const auto [pause, whole] = longestPause(task);
        const double end = longestEnd(task, whole);
        std::printf(
            "  %-20s %s %5.0f ms (CPU %5.0f), peak %5lld MB, held %5lld MB, freed in %4.0f ms, longest pause "
            "%4.0f ms, cancelled in %4.0f ms\n",
            task.name, isThere ? "     " : "fails", time, ownTime, static_cast<long long>(peak / megabyte),
            static_cast<long long>(held / megabyte), freeing, pause, end);
        std::fflush(stdout);
        worstPause = std::max(worstPause, pause);
        worstEnd = std::max(worstEnd, end);
        worstPeak = std::max(worstPeak, peak);
    }
    const QByteArray size = ", " + QByteArray::number(body.size() / megabyte) + " MB: ";
    const auto add = [&](const char *what, const char *place, const char *unit, double value) {
        Report::add({(name + size + what).constData(), place, unit, value});
    };
    add("longest pause of the progress of a task", "the task's thread", "ms", worstPause);
    add("longest time to the end of a cancelled task", "the task's thread", "ms", worstEnd);
    add("most memory of a task for each byte", "the host's process", "x",
        double(worstPeak) / double(body.size()));
}

} // namespace

int main(int argc, char *argv[])
{
    QTemporaryDir folder;
    qputenv("TMPDIR", folder.path().toLocal8Bit());
    const QCoreApplication app(argc, argv);
    const qsizetype size = (argc > 1 ? QByteArray(argv[1]).toLongLong() : 10) * megabyte;
    const auto isWanted = [&](const char *name) {
        return argc < 3 || QByteArrayView(name).contains(argv[2]);
    };
    if (isWanted("records"))
        measure("records", records(size));
    if (isWanted("numbers"))
        measure("numbers", Samples::numbers({}, size));
    if (isWanted("wide numbers"))
        measure("wide numbers", Samples::numbers("1234567890", size));
    if (isWanted("text"))
        measure("text", plainText(size));
    if (isWanted("base64"))
        measure("base64", records(size * 3 / 4).toBase64());
    if (isWanted("string"))
        measure("one JSON string", "[\"" + plainText(size).replace('\n', ' ') + "\"]");
}
