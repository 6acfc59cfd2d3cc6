// Writes Swift models of texts of 10 MB; for comparison, the time that a parser takes which an application
// would otherwise use.

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXSwiftModelGenerator.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"
#include "Benchmarks/Samples.h"

#include <nlohmann/json.hpp>

using Contest::require;

namespace {

/// One record, which becomes 13 nodes.
QByteArray record(int i)
{
    const QByteArray number = QByteArray::number(i);
    return R"({"id":)" + number + R"(,"full_name":"Zoë )" + number + R"(","email":"user)" + number +
           R"(@example.com","is_active":true,"tags":["alpha","beta"],"address":{"street":"High Street",)" +
           R"("city":"Genève","zip":null},"last_seen":1700000000123,"score":-)" + number + "}";
}

QByteArray text(int i)
{
    return "\"value " + QByteArray::number(i * 7919LL) + '"';
}

QByteArray object(int i)
{
    return "{\"id\":" + QByteArray::number(i) + '}';
}

/// An object with values by their identifiers.
QByteArray map(int count, QByteArray (*valueOf)(int))
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += (i == 0 ? "{\"user-" : ",\n\"user-") + QByteArray::number(i) + "\":" + valueOf(i);
    return text + '}';
}

/// The goal belongs to the tree and the model together: the peer, too, begins with the text.
void compare(const char *metric, const char *wholeMetric, const QByteArray &document)
{
    const auto treeOf = [&] {
        auto fields = QXApiTreeParser::parse(QByteArrayView(document));
        require(bool(fields), "the document is not JSON");
        return std::move(fields).value().constFirst();
    };
    const auto makeModel = [](const QXApiTreeField &root) {
        const auto source = QXSwiftModelGenerator::utf8Source(root, QStringLiteral("UsersResponse"));
        require(source && source.value().size() > 1'000'000, "no model");
    };
    const auto root = treeOf();
    const auto times =
        Contest::medians({{"model of the tree",
                           [&] {
                               makeModel(*root);
                           }},
                          {"tree and model",
                           [&] {
                               makeModel(*treeOf());
                           }},
                          {"nlohmann", [&] {
                               require(nlohmann::json::parse(document).is_object(), "no object");
                           }}});
    const Report::Other peer{"nlohmann::json::parse", times[2]};
    Report::add({.metric = metric,
                 .place = "one thread, tree to source",
                 .unit = "ms",
                 .ours = times[0],
                 .peer = peer});
    Report::add({.metric = wholeMetric,
                 .place = "one thread, text to source",
                 .unit = "ms",
                 .ours = times[1],
                 .peer = peer,
                 .goal = "0.8 x the peer at most",
                 .goalAdvantage = 1 / 0.8});
}

} // namespace

// The peer throws when it cannot read its document. The exception ends the benchmark.
int main() // NOLINT(bugprone-exception-escape)
{
    compare("models of 11 MB: 340,000 keys with texts", "tree and models of 340,000 keys with texts",
            map(340'000, text));
    compare("models of 10 MB: 340,000 keys with objects", "tree and models of 340,000 keys with objects",
            map(340'000, object));
    compare("models of 10 MB: 46,000 keys with records", "tree and models of 46,000 keys with records",
            map(46'000, record));
    return 0;
}
