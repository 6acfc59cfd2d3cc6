// Parses a document of 8 MB into a tree; for comparison, parsers that an application would otherwise use.

#include "Quorvix/QXApiTreeParser.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Samples.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QString>

#include <nlohmann/json.hpp>

#include <malloc.h>

using Contest::require;
using Samples::countNodes;

namespace {

constexpr int nodeCount = 600 * 1000;

/// Records as a server sends them, 20 nodes each: numbers, texts with escapes and with letters beyond ASCII,
/// lists, nested objects, and keys that are not sorted.
QByteArray makeDocument()
{
    QByteArray text = R"({"total":600000,"users":[)";
    for (int i = 0; i < nodeCount / 20; ++i) {
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

/// The number of bytes that are allocated at the moment.
size_t bytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace

// The peer throws when it cannot read its document. The exception ends the benchmark.
int main() // NOLINT(bugprone-exception-escape)
{
    const QByteArray document = makeDocument();
    const QString text = QString::fromUtf8(document);

    const size_t before = bytesInUse();
    auto fields = QXApiTreeParser::parse(QByteArrayView(document));
    require(bool(fields), "the document is not JSON");
    const size_t used = bytesInUse() - before;
    const size_t nodes = countNodes(*fields.value().first());
    require(nodes >= nodeCount, "the document has too few nodes");
    fields = QXApiTreeParser::Fields();

    std::printf("A document of %.1f MB, %zu nodes; median of %d turns, freeing included\n\n",
                double(document.size()) / 1e6, nodes, Contest::rounds);
    const auto parsedByNlohmann = [&] {
        return nlohmann::json::parse(document.cbegin(), document.cend());
    };
    Contest::print("parsed", {{"tree from bytes",
                               [&] {
                                   require(bool(QXApiTreeParser::parse(QByteArrayView(document))), "no tree");
                               }},
                              {"tree from QString",
                               [&] {
                                   require(bool(QXApiTreeParser::parse(text)), "no tree");
                               }},
                              {"nlohmann::json::parse",
                               [&] {
                                   require(parsedByNlohmann().is_object(), "no object");
                               }},
                              {"QJsonDocument::fromJson", [&] {
                                   require(QJsonDocument::fromJson(document).isObject(), "no object");
                               }}});
    std::printf("\nThe tree holds %.1f bytes per node, texts included.\n", double(used) / double(nodes));
}
