// Turns a document of 8 MB into a tree, beside the parsers that an application would otherwise call for it.

#include "Quorvix/QXApiTreeParser.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QString>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include <malloc.h>

namespace {

constexpr int nodeCount = 600 * 1000;
constexpr int rounds = 9;

/// Records as a server sends them, 20 nodes each: numbers, texts with escapes and letters beyond ASCII,
/// lists, nested objects, keys that are not in order.
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

size_t countNodes(const QXApiTreeField &field)
{
    size_t count = 1;
    for (const QXApiTreeField &child : field.children())
        count += countNodes(child);
    return count;
}

double milliseconds(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// What the allocator has handed out and not got back.
size_t bytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "not measured: %s\n", what);
    std::exit(EXIT_FAILURE);
}

struct Contender
{
    const char *name;
    /// Parses and lets go of the result.
    std::function<void()> run;
    std::vector<double> times;

    double median()
    {
        std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
        return times[rounds / 2];
    }
};

} // namespace

int main()
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

    std::array contenders{
        Contender{"QJsonDocument::fromJson",
                  [&] { require(QJsonDocument::fromJson(document).isObject(), "no object"); },
                  {}},
        Contender{"tree from bytes",
                  [&] { require(bool(QXApiTreeParser::parse(QByteArrayView(document))), "no tree"); },
                  {}},
        Contender{"tree from QString", [&] { require(bool(QXApiTreeParser::parse(text)), "no tree"); }, {}},
        Contender{"nlohmann::json::parse",
                  [&] {
                      require(nlohmann::json::parse(document.cbegin(), document.cend()).is_object(),
                              "no object");
                  },
                  {}},
    };
    for (int round = 0; round < rounds; ++round) {
        for (Contender &contender : contenders)
            contender.times.push_back(milliseconds(contender.run));
    }

    std::printf("A document of %.1f MB, %zu nodes; median of %d turns, freeing included\n\n",
                double(document.size()) / 1e6, nodes, rounds);
    const double peer = contenders.front().median();
    for (Contender &contender : contenders) {
        const double median = contender.median();
        std::printf("%-26s %7.1f ms   %5.2f x QJsonDocument\n", contender.name, median, median / peer);
    }
    std::printf("\nThe tree holds %.1f bytes per node, texts included.\n", double(used) / double(nodes));
}
