// Archives many exchanges with the archive writer and, for comparison, with QJsonDocument. The limit is one
// check of the bodies for UTF-8 and one copy of as many bytes as the archive has.

#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXRequestTrace.h"

#include "JSON/JSONWriter.h"

#include "Platform/URLText.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"
#include "Benchmarks/Samples.h"
#include "Tests/ProcessStatus.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QTemporaryDir>

#include <cstring>
#include <memory>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Contest::require;

namespace {

constexpr qsizetype bodySize = 100'000;
constexpr double megabyte = 1e6;

using MakeBody = QByteArray (*)(int);
using Traces = std::vector<QXRequestTrace>;

QByteArray jsonLikeBody(int)
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

QByteArray binaryBody(int)
{
    return Samples::binaryBytes(bodySize);
}

QByteArray smallBody(int number)
{
    return "{\"id\":" + QByteArray::number(number) +
           ",\"name\":\"An item of the store\",\"price\":12.5,\"tags\":[\"red\",\"blue\"]}";
}

Traces makeTraces(int count, MakeBody makeBody)
{
    Traces traces;
    for (int i = 0; i < count; ++i) {
        URLRequest request(QUrl(u"https://api.example.com/v1/items/%1?page=%1&sort=name"_s.arg(i)));
        request.setValue(u"application/json"_s, u"Accept"_s);
        request.setValue(u"session=4f1c; theme=dark"_s, u"Cookie"_s);
        QXRequestTrace trace(QString::number(i), request);
        trace.duration = 0.125;
        trace.response = QXResponseTrace(
            NSHTTPURLResponse(request.url, 200, u"HTTP/1.1"_s,
                              {{u"Content-Type"_s, u"application/json"_s}, {u"ETag"_s, u"\"5d8c\""_s}}),
            makeBody(i));
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

QByteArray archiveWithQt(const Traces &traces)
{
    QJsonArray entries;
    for (const QXRequestTrace &trace : traces)
        entries.append(entryObject(trace));
    return QJsonDocument(QJsonObject{{u"log"_s, QJsonObject{{u"entries"_s, entries}}}}).toJson();
}

QByteArray archive(const Traces &traces)
{
    return QXArchiveWriter::archive(QXArchiveWriter::sourceOf(traces));
}

/// Has a file written, and requires that it has so many bytes.
void writeFile(const QString &path, qsizetype size, const std::function<bool(QIODevice &)> &writer)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && writer(file) && file.flush(), "a file");
    require(path == "/dev/null"_L1 || file.size() == size, "a file of this size");
}

/// Checks each body, and passes the bytes of all bodies and as many more as the archive has to @p take.
void checkAndTake(const Traces &traces, qsizetype size, const std::function<void(QByteArrayView)> &take)
{
    for (const QXRequestTrace &trace : traces) {
        require(isValidUtf8(*trace.response->body), "text");
        take(*trace.response->body);
        size -= trace.response->body->size();
    }
    for (const QByteArray &body = *traces.front().response->body; size > 0; size -= body.size())
        take(QByteArrayView(body).first(std::min(size, body.size())));
}

void copyToFreshBuffer(const Traces &traces, qsizetype size)
{
    const std::unique_ptr<char[]> buffer(new char[size_t(size)]);
    char *to = buffer.get();
    checkAndTake(traces, size, [&](QByteArrayView bytes) {
        std::memcpy(to, bytes.data(), size_t(bytes.size()));
        to += bytes.size();
    });
    require(to == buffer.get() + size, "a copy of all bytes");
}

/// Copies into one block that is used again, as the writer's block is before each write.
void copyToSameBlock(const Traces &traces, qsizetype size)
{
    constexpr qsizetype blockSize = 1 << 18;
    static char block[blockSize];
    qsizetype used = 0;
    qsizetype copied = 0;
    checkAndTake(traces, size, [&](QByteArrayView bytes) {
        if (blockSize - used < bytes.size())
            used = 0;
        std::memcpy(block + used, bytes.data(), size_t(bytes.size()));
        used += bytes.size();
        copied += bytes.size();
    });
    require(copied == size, "a copy of all bytes");
}

/// How much more memory is in use at a time while @p work is done.
double extraMemory(const std::function<void()> &work)
{
    malloc_trim(0);
    ProcessStatus::forgetPeak();
    const qsizetype before = ProcessStatus::field("VmRSS");
    work();
    const auto extra = double(ProcessStatus::field("VmHWM") - before);
    require(before > 0 && extra > 0, "memory");
    return extra;
}

struct Goal
{
    const char *text = nullptr;
    std::optional<double> advantage = {};
    std::optional<double> ofLimit = {};
};

struct Sample
{
    const char *name = "";
    int count = 0;
    MakeBody makeBody = nullptr;
    int rounds = Contest::rounds;
    bool hasLimit = false;
    Goal toDevice = {};
    /// Of the archives in a file and in a buffer.
    Goal toMemory = {};
};

/// One way to make the same archive: ours, Qt's, and the limit, if there is one.
void compare(const QByteArray &metric, const char *place, const Goal &goal, qsizetype size,
             qsizetype peerSize, const std::vector<double> &times)
{
    const auto rate = [&](size_t i) {
        return double(i == 1 ? peerSize : size) / megabyte / (times[i] / 1000);
    };
    Report::Row row{.metric = metric.constData(),
                    .place = place,
                    .unit = "MB/s",
                    .ours = rate(0),
                    .peer = Report::Other{"QJsonDocument", rate(1)},
                    .isRate = true,
                    .goal = goal.text,
                    .goalAdvantage = goal.advantage,
                    .goalOfLimit = goal.ofLimit};
    if (times.size() > 2)
        row.limit = Report::Other{"UTF-8 check and memcpy", rate(2)};
    Report::add(row);
}

void compare(const Sample &sample)
{
    const Traces traces = makeTraces(sample.count, sample.makeBody);
    const QTemporaryDir folder(QDir::tempPath() + u"/ArchiveBenchmark-XXXXXX"_s);
    const QString path = folder.filePath(u"archive.har"_s);
    const qsizetype size = archive(traces).size();
    const qsizetype peerSize = archiveWithQt(traces).size();
    const qsizetype bodies = sample.count * traces.front().response->body->size();
    require(size > bodies && peerSize > bodies, "all bodies");
    const QByteArray name = sample.name;

    const double ours = extraMemory([&] { (void)archive(traces); });
    const double peer = extraMemory([&] { (void)archiveWithQt(traces); });
    Report::add({(name + ", memory").constData(), "peak of the process beyond the exchanges, to a buffer",
                 "MB", ours / megabyte, Report::Other{"QJsonDocument", peer / megabyte}});

    const auto write = [&](const QString &to) {
        writeFile(to, size, [&](QIODevice &file) {
            return !QXArchiveWriter::archive(QXArchiveWriter::sourceOf(traces), file);
        });
    };
    const auto writeWithQt = [&](const QString &to) {
        writeFile(to, peerSize, [&](QIODevice &file) { return file.write(archiveWithQt(traces)) > 0; });
    };
    std::vector<Contest::Contender> toBuffer{{"ours",
                                              [&] {
                                                  require(archive(traces).size() == size, "an archive");
                                              }},
                                             {"QJsonDocument", [&] {
                                                  require(archiveWithQt(traces).size() == peerSize,
                                                          "an archive");
                                              }}};
    std::vector<Contest::Contender> toFile{{"ours",
                                            [&] {
                                                write(path);
                                            }},
                                           {"QJsonDocument", [&] {
                                                writeWithQt(path);
                                            }}};
    std::vector<Contest::Contender> toDevice{{"ours",
                                              [&] {
                                                  write(u"/dev/null"_s);
                                              }},
                                             {"QJsonDocument", [&] {
                                                  writeWithQt(u"/dev/null"_s);
                                              }}};
    if (sample.hasLimit) {
        toBuffer.push_back({"limit", [&] {
                                copyToFreshBuffer(traces, size);
                            }});
        toFile.push_back({"limit", [&] {
                              writeFile(path, size, [&](QIODevice &file) {
                                  checkAndTake(traces, size, [&](QByteArrayView bytes) {
                                      require(file.write(bytes.data(), bytes.size()) == bytes.size(),
                                              "a file");
                                  });
                                  return true;
                              });
                          }});
        toDevice.push_back({"limit", [&] {
                                copyToSameBlock(traces, size);
                            }});
    }
    const auto report = [&](const char *way, const char *place, const Goal &goal,
                            const std::vector<Contest::Contender> &contenders) {
        compare(name + way, place, goal, size, peerSize, Contest::medians(contenders, sample.rounds));
    };
    const bool hasLimit = sample.hasLimit;
    report(", to a device",
           hasLimit ? "one thread; no page faults for ours and the limit"
                    : "one thread; no page faults for ours",
           sample.toDevice, toDevice);
    report(", to a file", hasLimit ? "one thread; the limit writes the bytes to a file" : "one thread",
           sample.toMemory, toFile);
    report(", to a buffer", "one thread; page faults of a fresh buffer for all", sample.toMemory, toBuffer);
}

/// Compares in a separate process, because memory of an earlier comparison would change the figures.
void compareApart(const Sample &sample)
{
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0) {
        compare(sample);
        std::fflush(stdout);
        std::_Exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    require(status == 0, sample.name);
}

} // namespace

int main()
{
    // Pages of a file and of a fresh buffer cost so much that the limit itself is less than 6 x the peer
    // there.
    const Goal third{"1/3 of the limit", {}, 1 / 3.0};
    const Goal tenfold{"10 x the peer", 10, {}};
    compareApart({"HAR of 1,000 texts of 100 KB",
                  1000,
                  jsonLikeBody,
                  Contest::rounds,
                  true,
                  {"6 x the peer, 1/3 of the limit", 6, 1 / 3.0},
                  third});
    compareApart({"HAR of 1,000 binary bodies of 100 KB", 1000, binaryBody, 5, false, tenfold, tenfold});
    compareApart({"HAR of 100,000 small exchanges", 100'000, smallBody, 5, false, {}, {}});
}
