// Parses texts of 9 and 10 MB into trees; for comparison, parsers that an application would otherwise use.
// Each time includes freeing the result.

#include "Quorvix/QXApiTreeParser.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"
#include "Benchmarks/Samples.h"
#include "Tests/ProcessStatus.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QString>

#include <nlohmann/json.hpp>

#include <malloc.h>

using Contest::require;
using Samples::countNodes;

namespace {

constexpr const char *place = "one thread, text to tree, freed";

/// Records as a server sends them, 20 nodes each: numbers, texts with escapes and with letters beyond ASCII,
/// lists, nested objects, and keys that are not sorted.
QByteArray makeDocument()
{
    constexpr int recordCount = 30'000;
    QByteArray text = R"({"total":600000,"users":[)";
    for (int i = 0; i < recordCount; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += i == 0 ? "" : ",\n";
        text +=
            R"({"id":)" + number + R"(,"uuid":"5f0c3b1e-77aa-4d1c-9e15-00000)" + number +
            R"(","name":"Zoë \"Zed\" )" + number + R"(","email":"user)" + number +
            R"(@example.com","active":true,"balance":)" + number + R"(.25,"tags":["alpha","beta","gamma"],)" +
            R"("address":{"street":"12 High Street","city":"Genève","zip":null,"geo":[46.2044,6.1432]},)" +
            R"("seen":1700000000123,"score":-)" + number + "}";
    }
    return text += "]}";
}

void makeTree(const QByteArray &text)
{
    require(bool(QXApiTreeParser::parse(QByteArrayView(text))), "no tree");
}

void compareRecords()
{
    const QByteArray document = makeDocument();
    const QString text = QString::fromUtf8(document);
    const auto times =
        Contest::medians({{"tree from bytes",
                           [&] {
                               makeTree(document);
                           }},
                          {"tree from a QString",
                           [&] {
                               require(bool(QXApiTreeParser::parse(text)), "no tree");
                           }},
                          {"QJsonDocument",
                           [&] {
                               require(QJsonDocument::fromJson(document).isObject(), "no object");
                           }},
                          {"nlohmann", [&] {
                               require(nlohmann::json::parse(document).is_object(), "no object");
                           }}});
    const Report::Other qt{"QJsonDocument::fromJson", times[2]};
    const Report::Other nlohmann{"nlohmann::json::parse", times[3]};
    Report::add({.metric = "JSON of 9 MB as a tree",
                 .place = place,
                 .unit = "ms",
                 .ours = times[0],
                 .peer = qt,
                 .goal = "0.25 of the peer",
                 .goalAdvantage = 4});
    Report::add({"JSON of 9 MB as a tree, from a QString", place, "ms", times[1], qt});
    Report::add({"JSON of 9 MB as a tree", place, "ms", times[0], nlohmann});
}

void compareNumbers()
{
    constexpr qsizetype size = 10'000'000;
    const QByteArray ordinary = Samples::numbers({}, size);
    const QByteArray wide = Samples::numbers("1234567890", size);
    const auto times = Contest::medians({{"wide",
                                          [&] {
                                              makeTree(wide);
                                          }},
                                         {"ordinary", [&] {
                                              makeTree(ordinary);
                                          }}});
    Report::add({.metric = "10 MB of numbers beyond 64 bits as a tree",
                 .place = place,
                 .unit = "ms",
                 .ours = times[0],
                 .peer = Report::Other{"10 MB of numbers of 64 bits", times[1]},
                 .goal = "3 x the peer at most",
                 .goalAdvantage = 1.0 / 3});
}

/// What a tree of a large text keeps in memory.
void weigh()
{
    const QByteArray document = makeDocument();
    malloc_trim(0);
    const qsizetype before = ProcessStatus::field("VmRSS");
    const auto fields = QXApiTreeParser::parse(QByteArrayView(document));
    require(bool(fields), "the document is not JSON");
    malloc_trim(0);
    const qsizetype held = ProcessStatus::field("VmRSS") - before;
    const size_t nodes = countNodes(*fields.value().first());
    require(nodes > 600'000 && held > 0, "the tree is not in memory");
    Report::add({"memory of a tree, for each node with its texts", "the host's process", "bytes",
                 double(held) / double(nodes)});
}

} // namespace

// The peer throws when it cannot read its document. The exception ends the benchmark.
int main() // NOLINT(bugprone-exception-escape)
{
    weigh();
    compareRecords();
    compareNumbers();
    return 0;
}
