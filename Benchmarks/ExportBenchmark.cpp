// Exports one large exchange as a cURL command and a mock file; for comparison, with Qt alone.

#include "Quorvix/QXApiMockDefinition.h"
#include "Quorvix/QXApiMockGenerator.h"
#include "Quorvix/QXCurlCommandBuilder.h"
#include "Quorvix/QXRequestTrace.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <nlohmann/json.hpp>

#include <string>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Contest::require;

namespace {

constexpr qsizetype bodySize = 10'000'000;

QByteArray makeBody()
{
    QByteArray body = "[";
    for (int i = 0; body.size() < bodySize; ++i) {
        const QByteArray number = QByteArray::number(i);
        body += QByteArray(i == 0 ? "" : ",") + "{\"title\":\"It's item " + number + "\",\"id\":" + number +
                ",\"summary\":\"Some text that a person would read, of a usual "
                "length.\",\"on\":true,\"price\":9.5}";
    }
    return body + "]";
}

QXRequestTrace makeTrace()
{
    URLRequest request(QUrl(u"https://api.example.com/api/v1/items"_s));
    request.setValue(u"application/json"_s, u"Content-Type"_s);
    QXRequestTrace trace(u"1"_s, request);
    trace.body = makeBody();
    trace.response =
        QXResponseTrace(NSHTTPURLResponse(request.url, 200, u"HTTP/1.1"_s, {}), std::optional(*trace.body));
    return trace;
}

QString commandByReplacing(const QXRequestTrace &trace)
{
    QString body = QString::fromUtf8(*trace.body);
    body.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n').replace("'"_L1, "'\\''"_L1);
    return u"curl -X GET '"_s + trace.url->toString() +
           "' \\\n  -H 'Content-Type: application/json' \\\n  --data-raw '"_L1 + body + u'\'';
}

QByteArray mockByQJsonDocument(const QXRequestTrace &trace)
{
    const QJsonDocument body = QJsonDocument::fromJson(*trace.response->body);
    const QJsonObject response{{u"data"_s, body.array()}, {u"default"_s, true}, {u"status"_s, 200}};
    const QJsonObject request{{u"method"_s, u"GET"_s}, {u"url"_s, u"/api/v1/items(\\?.*)?$"_s}};
    const QJsonObject definition{{u"name"_s, u"/api/v1/items_GET"_s},
                                 {u"request"_s, request},
                                 {u"responses"_s, QJsonObject{{u"success"_s, response}}}};
    return QJsonDocument(definition).toJson();
}

std::string mockByNlohmann(const QXRequestTrace &trace)
{
    const QByteArray &body = *trace.response->body;
    const nlohmann::json definition = {{"name", "/api/v1/items_GET"},
                                       {"request", {{"method", "GET"}, {"url", "/api/v1/items(\\?.*)?$"}}},
                                       {"responses",
                                        {{"success",
                                          {{"data", nlohmann::json::parse(body.cbegin(), body.cend())},
                                           {"default", true},
                                           {"status", 200}}}}}};
    return definition.dump(2);
}

QByteArray mock(const QXRequestTrace &trace)
{
    const auto body = JSONReader::parse(*trace.response->body);
    if (!body)
        return {};
    const QXApiMockResponse response{trace.response->statusCode, QXApiMockAnyEncodable(body.value()), true};
    return QXApiMockDefinition{QXApiMockGenerator::endpointName(*trace.url, *trace.method),
                               {QXApiMockGenerator::urlPattern(*trace.url), *trace.method},
                               {{u"success"_s, response}}}
        .encode();
}

/// Ends the program when the output is smaller than the body.
void requireLarge(size_t size)
{
    require(size > size_t(bodySize), "the body is missing");
}

/// A row for each peer.
void compare(const char *metric, const std::vector<Contest::Contender> &contenders)
{
    const std::vector<double> times = Contest::medians(contenders);
    for (size_t peer = 1; peer < times.size(); ++peer)
        Report::add(
            {metric, "one thread", "ms", times[0], Report::Other{contenders[peer].name, times[peer]}});
}

} // namespace

int main()
{
    const QXRequestTrace trace = makeTrace();
    const auto command = QXCurlCommandBuilder::build(trace);
    require(command && command.value() == commandByReplacing(trace), "the commands differ");
    compare("cURL command of a body of 10 MB",
            {{"ours",
              [&] {
                  requireLarge(size_t(QXCurlCommandBuilder::build(trace).value().size()));
              }},
             {"QString::replace", [&] {
                  requireLarge(size_t(commandByReplacing(trace).size()));
              }}});
    compare("mock file of a body of 10 MB", {{"ours",
                                              [&] {
                                                  requireLarge(size_t(mock(trace).size()));
                                              }},
                                             {"nlohmann::json",
                                              [&] {
                                                  requireLarge(mockByNlohmann(trace).size());
                                              }},
                                             {"QJsonDocument", [&] {
                                                  requireLarge(size_t(mockByQJsonDocument(trace).size()));
                                              }}});
}
