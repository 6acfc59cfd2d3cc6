// Writes Swift models of documents of 8 MB; for comparison, the time to parse them, with our parser and with
// one that an application would otherwise use.

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXSwiftModelGenerator.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Samples.h"

#include <nlohmann/json.hpp>

using Contest::require;
using Samples::countNodes;

namespace {

constexpr int recordCount = 46 * 1000;

/// One record, which becomes 13 nodes.
QByteArray record(int i)
{
    const QByteArray number = QByteArray::number(i);
    return R"({"id":)" + number + R"(,"full_name":"Zoë )" + number + R"(","email":"user)" + number +
           R"(@example.com","is_active":true,"tags":["alpha","beta"],"address":{"street":"High Street",)" +
           R"("city":"Genève","zip":null},"last_seen":1700000000123,"score":-)" + number + "}";
}

/// A list of records, which becomes a model with one record type.
QByteArray listDocument()
{
    QByteArray text = R"({"users":[)";
    for (int i = 0; i < recordCount; ++i)
        text += (i == 0 ? "" : ",\n") + record(i);
    return text + "]}";
}

/// An object with records by their identifiers; each record becomes a type.
QByteArray mapDocument()
{
    QByteArray text = "{";
    for (int i = 0; i < recordCount; ++i)
        text += (i == 0 ? "\"user-" : ",\n\"user-") + QByteArray::number(i) + "\":" + record(i);
    return text + '}';
}

void compare(const char *title, const QByteArray &document)
{
    const auto fields = QXApiTreeParser::parse(QByteArrayView(document));
    require(bool(fields), "the document is not JSON");
    const QXApiTreeField &root = *fields.value().first();
    const auto makeModel = [&] {
        auto source = QXSwiftModelGenerator::source(root, QStringLiteral("UsersResponse"));
        require(bool(source), "no model");
        return std::move(source).value();
    };
    std::printf("%s: %.1f MB, %zu nodes, a model of %lld lines\n", title, double(document.size()) / 1e6,
                countNodes(root), (long long)makeModel().count(u'\n'));
    const auto parsedByNlohmann = [&] {
        return nlohmann::json::parse(document.cbegin(), document.cend());
    };
    Contest::print("took", {{"model of the tree",
                             [&] {
                                 require(!makeModel().isEmpty(), "empty model");
                             }},
                            {"tree",
                             [&] {
                                 require(bool(QXApiTreeParser::parse(QByteArrayView(document))), "no tree");
                             }},
                            {"nlohmann::json::parse", [&] {
                                 require(parsedByNlohmann().is_object(), "no object");
                             }}});
}

} // namespace

// The peer throws when it cannot read its document. The exception ends the benchmark.
int main() // NOLINT(bugprone-exception-escape)
{
    compare("List of records", listDocument());
    compare("Map of records", mapDocument());
    return 0;
}
