#include "Tests/Exchanges.h"
#include "Tests/TestKit.h"

#include "Quorvix/QXApiMockDefinition.h"
#include "Quorvix/QXApiMockGenerator.h"
#include "Quorvix/QXApiTree.h"
#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXBodyText.h"
#include "Quorvix/QXCurlCommandBuilder.h"
#include "Quorvix/QXLongText.h"
#include "Quorvix/QXPayloadDecoder.h"
#include "Quorvix/QXRawDetails.h"
#include "Quorvix/QXSwiftModelExport.h"
#include "Quorvix/QXTaskProgress.h"
#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONReader.h"

#include <QtTest/QTest>

#include <atomic>
#include <functional>
#include <thread>

#include <pthread.h>
#include <time.h>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// What a task made, as bytes; absent if it says that it was cancelled.
using Outcome = std::optional<QByteArray>;
using Task = std::function<Outcome(QXTaskProgress *)>;

bool isCancellation(const NSError &error)
{
    return error.domain == NSCocoaErrorDomain && error.code == NSUserCancelledError;
}

template<typename Value>
Outcome outcome(const Result<Value> &result, const std::function<QByteArray(const Value &)> &bytes)
{
    if (!result)
        return isCancellation(result.error()) ? Outcome()
                                              : "failed: " + result.error().localizedDescription.toUtf8();
    return bytes(result.value());
}

Outcome fileOutcome(const Result<QUrl> &file)
{
    return outcome<QUrl>(file, [](const QUrl &url) { return contentOf(url.toLocalFile()); });
}

QByteArray dump(const QXApiTreeField &field)
{
    QByteArray text = field.nameUtf8().toByteArray() + field.summary().value_or(QString()).toUtf8();
    for (const QXApiTreeField &child : field.children())
        text += dump(child);
    return text;
}

/// A root object whose members are not sorted, so that a task has to sort them.
QByteArray jsonBody(int count)
{
    QByteArray body = "{";
    for (int i = 0; i < count; ++i)
        body += '"' + QByteArray::number(i * 7919 % count) +
                R"(":{"id":12345678901234567890123,"name":"item","tags":["red","blue"],"price":12.5},)";
    body.back() = '}';
    return body;
}

QXRequestTrace traceOf(const QByteArray &body)
{
    QXRequestTrace trace = Exchanges::makeTrace(u"http://host/v1/items"_s, {}, body.left(body.size() / 4));
    trace.response = Exchanges::makeResponseTrace(200, body);
    return trace;
}

/// The time that a thread has had a processor, in nanoseconds. It does not depend on other processes.
qint64 ownTime(pthread_t thread)
{
    clockid_t clock = 0;
    timespec time{};
    return pthread_getcpuclockid(thread, &clock) == 0 && clock_gettime(clock, &time) == 0
               ? time.tv_sec * 1'000'000'000LL + time.tv_nsec
               : 0;
}

/// Runs a task in a thread of its own and watches it from this one.
class Run
{
public:
    /// The task is cancelled when it is as far as @p cancelAt says.
    Run(const Task &task, double cancelAt)
    {
        std::atomic<bool> isDone = false;
        std::thread work([&] {
            outcome = task(&progress);
            time = ownTime(pthread_self());
            isDone = true;
        });
        qint64 cancelled = 0;
        for (double last = 0; !isDone; std::this_thread::yield()) {
            const double now = progress.fraction();
            isMonotonic = isMonotonic && now >= last;
            last = now;
            if (now >= cancelAt && !progress.isCancelled()) {
                progress.cancel();
                cancelled = ownTime(work.native_handle());
            }
        }
        work.join();
        timeToEnd = time - cancelled;
    }

    QXTaskProgress progress;
    Outcome outcome;
    bool isMonotonic = true;
    qint64 time = 0;
    qint64 timeToEnd = 0;
};

constexpr double never = 2;

/// Cancels a task when it writes its first bytes, and counts what is written.
class CancellingDevice final : public QIODevice
{
public:
    explicit CancellingDevice(QXTaskProgress &progress) : m_progress(progress)
    {
        open(WriteOnly | Unbuffered);
    }

    qint64 written = 0;

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 size) override
    {
        m_progress.cancel();
        written += size;
        return size;
    }

private:
    QXTaskProgress &m_progress;
};

} // namespace

Q_DECLARE_METATYPE(Task)

class TaskProgressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsAndEndsSoon_data();
    void reportsAndEndsSoon();
    void endsInOnePart();
};

void TaskProgressTest::reportsAndEndsSoon_data()
{
    QTest::addColumn<Task>("task");
    const QByteArray json = jsonBody(3'000);
    const QByteArray text = QByteArray("words that nobody has encoded, ").repeated(30'000);
    // Text that needs no change is written many times faster, and so are bytes.
    const QByteArray longText = text.repeated(20);
    const QByteArray binary(6'000'000, '\xFF');
    const auto add = [](const char *name, const Task &task) {
        QTest::newRow(name) << task;
    };
    add("tree", [json](QXTaskProgress *progress) {
        return outcome<QXApiTreeParser::Fields>(QXApiTreeParser::parse(QByteArrayView(json), progress),
                                                [](const auto &fields) { return dump(*fields.first()); });
    });
    const QXRequestTrace trace = traceOf(json);
    add("model",
        [trace](auto *progress) { return fileOutcome(QXSwiftModelExport::exportTrace(trace, progress)); });
    add("mock",
        [trace](auto *progress) { return fileOutcome(QXApiMockGenerator::exportMock(trace, progress)); });
    const auto addArchive = [&](const char *name, const QXRequestTrace &archived) {
        add(name, [archived](auto *progress) {
            return fileOutcome(QXArchiveWriter::exportTrace(archived, Exchanges::sent, progress));
        });
    };
    addArchive("archive of text", traceOf(longText));
    addArchive("archive of bytes", traceOf(binary));
    const auto addDetails = [&](const char *name, const QXRequestTrace &detailed) {
        add(name, [detailed](auto *progress) {
            const QString details = rawDetails(detailed, progress);
            return details.isEmpty() ? Outcome() : details.toUtf8();
        });
    };
    addDetails("details of JSON", trace);
    addDetails("details of text", traceOf(longText));
    addDetails("details of bytes", traceOf(binary));
    const auto addCommand = [&](const char *name, const QByteArray &body) {
        add(name, [sent = Exchanges::makeTrace(u"http://host/"_s, {}, body)](auto *progress) {
            return outcome<QString>(QXCurlCommandBuilder::build(sent, progress),
                                    [](const QString &command) { return command.toUtf8(); });
        });
    };
    addCommand("command with text", QByteArray(2'000'000, '\''));
    addCommand("command with bytes", binary);
    add("readable text", [json](QXTaskProgress *progress) {
        const auto readable = QXBodyText::readable(json, progress);
        return readable ? Outcome(readable->toUtf8()) : Outcome();
    });
    const auto addDecoding = [&](const char *name, const QByteArray &encoded) {
        add(name, [encoded](QXTaskProgress *progress) {
            const auto payload = QXPayloadDecoder::decodePayload(QByteArrayView(encoded), progress);
            return payload
                       ? Outcome(payload->sections.value(1, payload->sections.constFirst()).content.toUtf8())
                       : Outcome();
        });
    };
    addDecoding("Base64 of JSON", json.toBase64());
    addDecoding("Base64 of bytes", binary.toBase64());
    addDecoding("token of JSON",
                "e30." + json.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals) +
                    ".c2ln");
    addDecoding("Base64 at the end", text + binary.toBase64());
    add("search", [text](QXTaskProgress *progress) {
        const bool isFound = QXPayloadDecoder::hasEncodedCandidate(QByteArrayView(text), progress);
        return progress && progress->isCancelled() ? Outcome() : QByteArray::number(int(isFound));
    });
}

void TaskProgressTest::reportsAndEndsSoon()
{
    QFETCH(const Task, task);
    std::optional<TemporaryFolder> folder(std::in_place);
    const Outcome expected = task(nullptr);
    QVERIFY(expected);
    const Run whole(task, never);
    QVERIFY(whole.isMonotonic);
    QCOMPARE(whole.progress.fraction(), 1.0);
    QVERIFY(whole.outcome == expected);

    // The watching thread may not run while a short task does, so that it cancels too late.
    qint64 shortest = whole.time;
    for (int attempt = 0; attempt < 50 && shortest > whole.time / 5; ++attempt) {
        folder.emplace();
        const Run cancelled(task, 0.55);
        QVERIFY(cancelled.isMonotonic);
        if (cancelled.outcome)
            continue;
        QCOMPARE(folder->files(), QStringList());
        shortest = std::min(shortest, cancelled.timeToEnd);
    }
    QVERIFY2(shortest <= whole.time / 5, qPrintable(u"%1 of %2 ns"_s.arg(shortest).arg(whole.time)));

    folder.emplace();
    const Run refused(task, 0);
    QVERIFY(!refused.outcome);
    QCOMPARE(folder->files(), QStringList());
}

void TaskProgressTest::endsInOnePart()
{
    // No part of the work is done while a long string is written, or while many names are sorted.
    const QByteArray longString = '"' + QByteArray(8'000'000, 'x') + '"';
    {
        QXTaskProgress progress;
        CancellingDevice device(progress);
        const QXApiMockDefinition mock{
            {}, {}, {{{}, {200, QXApiMockAnyEncodable(JSONReader::parse(longString).value())}}}};
        const auto error = mock.encode(device, &progress);
        QVERIFY(error && isCancellation(*error));
        QVERIFY(device.written < 3'000'000);
    }
    QXTaskProgress progress;
    QXTaskSteps steps(&progress, 1'000'000'000);
    QVERIFY(steps.goOn(0)); // the next report is far away
    progress.cancel();
    for (const QByteArray &json : {'[' + longString + ']', jsonBody(5'000)}) {
        QString text;
        const JSONDocument document = JSONReader::parse(json).value();
        QVERIFY(!QXLongText::appendJson(text, document, JSONWriter::KeyOrder::Sorted, steps));
        QVERIFY(text.size() < 3'000'000);
    }
    QVERIFY(!QXApiTree::make(JSONReader::parse(jsonBody(5'000)).value(), steps));
}

QTEST_GUILESS_MAIN(TaskProgressTest)
#include "TaskProgressTest.moc"
