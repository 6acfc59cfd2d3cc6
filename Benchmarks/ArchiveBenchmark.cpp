// Archives 1,000 exchanges of 100 KB each, with the archive writer and, for comparison, with QJsonDocument.

#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXRequestTrace.h"

#include "Platform/URLText.h"

#include "Benchmarks/Samples.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

constexpr int exchangeCount = 1000;
constexpr qsizetype bodySize = 100'000;

QByteArray jsonLikeBody()
{
    QByteArray body = "{\"items\":[";
    for (int i = 0; body.size() < bodySize; ++i) {
        const QByteArray number = QByteArray::number(i);
        body += "{\"id\":" + number + ",\"title\":\"The title of item " + number +
                "\",\"summary\":\"Some text that a person would read, of a usual length.\",\"on\":true},\n";
    }
    body.truncate(bodySize);
    return body;
}

QByteArray binaryBody()
{
    return Samples::binaryBytes(bodySize);
}

std::vector<QXRequestTrace> makeTraces(const std::function<QByteArray()> &makeBody)
{
    std::vector<QXRequestTrace> traces;
    for (int i = 0; i < exchangeCount; ++i) {
        URLRequest request(QUrl(u"https://api.example.com/v1/items/%1?page=%1&sort=name"_s.arg(i)));
        request.setValue(u"application/json"_s, u"Accept"_s);
        request.setValue(u"session=4f1c; theme=dark"_s, u"Cookie"_s);
        QXRequestTrace trace(QString::number(i), request);
        trace.duration = 0.125;
        trace.response = QXResponseTrace(
            NSHTTPURLResponse(request.url, 200, u"HTTP/1.1"_s,
                              {{u"Content-Type"_s, u"application/json"_s}, {u"ETag"_s, u"\"5d8c\""_s}}),
            makeBody());
        traces.push_back(std::move(trace));
    }
    return traces;
}

/// The bodies and headers of the archive, built as an application builds a document with Qt alone. A few
/// fields are missing, which makes Qt faster.
QJsonObject entryObject(const QXRequestTrace &trace)
{
    const auto pairs = [](const std::optional<HTTPHeaderFields> &headers) {
        QJsonArray array;
        for (auto it = headers->cbegin(); it != headers->cend(); ++it)
            array.append(QJsonObject{{u"name"_s, it.key()}, {u"value"_s, it.value()}});
        return array;
    };
    const QByteArray &body = *trace.response->body;
    const QString text = QString::fromUtf8(body);
    const bool isText = !text.contains(QChar::ReplacementCharacter);
    QJsonObject content{{u"mimeType"_s, u"application/json"_s},
                        {u"size"_s, body.size()},
                        {u"text"_s, isText ? text : QString::fromLatin1(body.toBase64())}};
    if (!isText)
        content[u"encoding"_s] = u"base64"_s;
    return {{u"request"_s, QJsonObject{{u"method"_s, *trace.method},
                                       {u"url"_s, absoluteString(*trace.url)},
                                       {u"headers"_s, pairs(trace.headers)}}},
            {u"response"_s, QJsonObject{{u"status"_s, trace.response->statusCode},
                                        {u"headers"_s, pairs(trace.response->headers)},
                                        {u"content"_s, content}}},
            {u"time"_s, *trace.duration * 1000}};
}

QByteArray archiveWithQt(const std::vector<QXRequestTrace> &traces)
{
    QJsonArray entries;
    for (const QXRequestTrace &trace : traces)
        entries.append(entryObject(trace));
    return QJsonDocument(QJsonObject{{u"log"_s, QJsonObject{{u"entries"_s, entries}}}}).toJson();
}

/// A memory field of this process's status file, in bytes.
qint64 processMemory(QByteArrayView field)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(field.size()).simplified().split(' ').first().toLongLong() * 1024;
    }
    return 0;
}

void resetPeak()
{
    malloc_trim(0);
    QFile references(u"/proc/self/clear_refs"_s);
    if (references.open(QIODevice::WriteOnly))
        references.write("5");
}

struct Figures
{
    double seconds = 0;
    qint64 outputSize = 0;
    qint64 extraMemory = 0;
};

/// Returns the time of the fastest of several runs, and the memory of the first.
Figures measure(const std::function<qint64()> &produce)
{
    Figures best;
    for (int run = 0; run < 3; ++run) {
        resetPeak();
        const qint64 before = processMemory("VmRSS:");
        const auto start = std::chrono::steady_clock::now();
        const qint64 size = produce();
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (run == 0)
            best = {seconds, size, processMemory("VmHWM:") - before};
        best.seconds = std::min(best.seconds, seconds);
    }
    return best;
}

void print(const char *what, const Figures &figures)
{
    std::printf("  %-28s %8.1f MB %9.0f MB/s %10.1f MB extra (%.2f x output)\n", what,
                double(figures.outputSize) / 1e6, double(figures.outputSize) / 1e6 / figures.seconds,
                double(figures.extraMemory) / 1e6, double(figures.extraMemory) / double(figures.outputSize));
}

void compare(const char *title, const std::function<QByteArray()> &makeBody)
{
    const std::vector<QXRequestTrace> traces = makeTraces(makeBody);
    std::printf("%s: %d exchanges with bodies of %lld bytes\n", title, exchangeCount, (long long)bodySize);
    const Figures ours =
        measure([&] { return QXArchiveWriter::archive(QXArchiveWriter::sourceOf(traces)).size(); });
    const Figures streamed = measure([&]() -> qint64 {
        QFile device(u"/dev/null"_s);
        if (!device.open(QIODevice::WriteOnly) ||
            QXArchiveWriter::archive(QXArchiveWriter::sourceOf(traces), device))
            return 0;
        return ours.outputSize;
    });
    const Figures peer = measure([&] { return archiveWithQt(traces).size(); });
    print("archive writer, to a buffer", ours);
    print("archive writer, to a device", streamed);
    print("QJsonDocument", peer);
    std::printf("  faster by %.1f, output per second\n\n",
                (double(ours.outputSize) / ours.seconds) / (double(peer.outputSize) / peer.seconds));
}

/// Compares in a separate process, because memory of an earlier comparison would change the figures.
void compareApart(const char *title, const std::function<QByteArray()> &makeBody)
{
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0) {
        compare(title, makeBody);
        std::fflush(stdout);
        std::_Exit(0);
    }
    ::waitpid(child, nullptr, 0);
}

} // namespace

int main()
{
    compareApart("Text", jsonLikeBody);
    compareApart("Binary", binaryBody);
    return 0;
}
