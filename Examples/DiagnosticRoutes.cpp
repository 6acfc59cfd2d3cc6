#include "Examples/DiagnosticRoutes.h"

#include "Examples/HttpAnswer.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <zlib.h>

#include <random>

namespace {

using Request = httplib::Request;
using Response = httplib::Response;

constexpr int exportSize = 10 * 1024 * 1024;
constexpr int maximumBinarySize = 64 * 1024 * 1024;
constexpr int maximumPause = 15'000;

/// Compresses bytes in the gzip format (RFC 1952).
QByteArray gzip(const QByteArray &bytes)
{
    constexpr int gzipFormat = 15 + 16;
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, gzipFormat, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        return {};
    QByteArray packed(static_cast<qsizetype>(deflateBound(&stream, static_cast<uLong>(bytes.size()))), '\0');
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.constData()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.truncate(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return packed;
}

QByteArray randomBytes(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    std::mt19937 random(20'230'610);
    for (char &byte : bytes)
        byte = static_cast<char>(random() & 0xff);
    return bytes;
}

QByteArray orders(int size)
{
    QByteArray json = "{\"exportedAt\":\"2024-06-01T12:00:00Z\",\"orders\":[";
    json.reserve(size + 1024);
    for (int i = 0; json.size() < size; ++i) {
        const QByteArray number = QByteArray::number(i);
        json += (i ? ",{\"id\":" : "{\"id\":") + number + R"(,"customer":{"name":"Zoë Müller )" + number +
                R"(","vip":)" + (i % 7 ? "false" : "true") + R"(},"total":)" +
                QByteArray::number(i * 0.37 + 9.99) + R"(,"lines":[{"sku":"fjord-vase","quantity":)" +
                QByteArray::number(i % 5 + 1) +
                R"(},{"sku":"tide-mug","quantity":2}],"note":null,"tags":["gift","express"]})";
    }
    return json + "]}";
}

QByteArray articles()
{
    QJsonArray list;
    for (int i = 1; i <= 40; ++i) {
        list.append(QJsonObject{{QStringLiteral("slug"), QStringLiteral("journal-%1").arg(i)},
                                {QStringLiteral("title"), QStringLiteral("How it is made, part %1").arg(i)},
                                {QStringLiteral("minutes"), 3 + i % 6},
                                {QStringLiteral("published"), i % 9 != 0}});
    }
    return QJsonDocument(list).toJson(QJsonDocument::Compact);
}

/// The received header fields; the server adds some about the connection.
QJsonArray describeHeaders(const Request &request)
{
    QJsonArray headers;
    for (const auto &[name, value] : request.headers) {
        if (name != "REMOTE_ADDR" && name != "REMOTE_PORT" && name != "LOCAL_ADDR" && name != "LOCAL_PORT")
            headers.append(QJsonObject{{QStringLiteral("name"), QString::fromStdString(name)},
                                       {QStringLiteral("value"), QString::fromStdString(value)}});
    }
    return headers;
}

QJsonObject describeRequest(const Request &request, const std::string &body)
{
    return {{QStringLiteral("method"), QString::fromStdString(request.method)},
            {QStringLiteral("path"), QString::fromStdString(request.target)},
            {QStringLiteral("headers"), describeHeaders(request)},
            {QStringLiteral("body"), QString::fromLatin1(QByteArray::fromStdString(body).toBase64())}};
}

void echo(const Request &request, Response &response)
{
    HttpAnswer::json(response, QJsonDocument(describeRequest(request, request.body)));
}

/// As above, but reads the body itself, so that the server neither parses a form nor limits its size.
void echoBody(const Request &request, Response &response, const httplib::ContentReader &reader)
{
    std::string body;
    const auto append = [&body](const char *bytes, size_t size) {
        body.append(bytes, size);
        return true;
    };
    QJsonArray parts;
    const auto startPart = [&parts](const httplib::MultipartFormData &part) {
        parts.append(QJsonObject{{QStringLiteral("name"), QString::fromStdString(part.name)},
                                 {QStringLiteral("filename"), QString::fromStdString(part.filename)},
                                 {QStringLiteral("contentType"), QString::fromStdString(part.content_type)}});
        return true;
    };
    if (!(request.is_multipart_form_data() ? reader(startPart, append) : reader(append)))
        return HttpAnswer::problem(response, 400, QStringLiteral("Not understood"), QStringLiteral("Body"));
    QJsonObject answer = describeRequest(request, body);
    if (!parts.isEmpty())
        answer.insert(QStringLiteral("parts"), parts);
    HttpAnswer::json(response, QJsonDocument(answer));
}

void answerStatus(const Request &request, Response &response)
{
    const int status = std::stoi(request.matches[1]);
    response.status = status;
    if (status >= 400)
        HttpAnswer::problem(response, status, QStringLiteral("As requested"),
                            QStringLiteral("This path always answers %1.").arg(status));
    else if (status >= 200 && status != 204 && status != 304)
        HttpAnswer::json(response, QJsonDocument(QJsonObject{{QStringLiteral("status"), status}}), status);
}

void redirectToEcho(const Request &request, Response &response)
{
    response.status = std::stoi(request.matches[1]);
    response.set_header("Location", "/echo?from=" + request.matches[1].str());
}

/// Adds a route for each method that a client may send.
template<typename Handle>
void addForAll(httplib::Server &server, const char *pattern, Handle handle)
{
    server.Get(pattern, handle);
    server.Post(pattern, handle);
    server.Put(pattern, handle);
    server.Patch(pattern, handle);
    server.Delete(pattern, handle);
    server.Options(pattern, handle);
}

} // namespace

DiagnosticRoutes::DiagnosticRoutes(BreakableServer &server) : m_server(server)
{
    addRedirects();
    addBodies();
    addFailures();
    addEcho();
}

void DiagnosticRoutes::addRedirects()
{
    m_server.Get(R"(/redirect/(\d{1,3}))", [](const Request &request, Response &response) {
        const int left = std::stoi(request.matches[1]);
        if (left > 0)
            response.set_redirect("/redirect/" + std::to_string(left - 1));
        else
            HttpAnswer::json(response, QJsonDocument(QJsonObject{{QStringLiteral("arrived"), true}}));
    });
    m_server.Get("/redirect-loop",
                 [](const Request &, Response &response) { response.set_redirect("/redirect-loop"); });
    addForAll(m_server, "/moved/(301|302|303|307|308)", httplib::Server::Handler(redirectToEcho));
}

void DiagnosticRoutes::addBodies()
{
    m_server.Get("/api/v1/articles", [packed = gzip(articles())](const Request &, Response &response) {
        response.set_header("Content-Encoding", "gzip");
        HttpAnswer::bytes(response, packed, "application/json; charset=utf-8");
    });
    m_server.Get("/api/v1/export", [this](const Request &, Response &response) {
        HttpAnswer::bytes(response, exportBody(), "application/json; charset=utf-8");
    });
    m_server.Get("/binary", [](const Request &request, Response &response) {
        const int size = std::min(HttpAnswer::number(request, "size", 4096), maximumBinarySize);
        HttpAnswer::bytes(response, randomBytes(size), "application/octet-stream");
    });
    m_server.Get("/set-cookies", [](const Request &, Response &response) {
        response.set_header("Set-Cookie", "basket=7f3a; Path=/; HttpOnly");
        response.set_header("Set-Cookie", "currency=EUR; Path=/; Expires=Fri, 01 Jan 2100 00:00:00 GMT");
        HttpAnswer::json(response, QJsonDocument(QJsonObject{{QStringLiteral("cookies"), 2}}));
    });
}

void DiagnosticRoutes::addFailures()
{
    addForAll(m_server, R"(/status/([2-5]\d\d))", httplib::Server::Handler(answerStatus));
    m_server.Get("/slow", [this](const Request &request, Response &response) {
        const int pause = std::min(HttpAnswer::number(request, "ms", 1500), maximumPause);
        m_server.pause(std::chrono::milliseconds(pause));
        HttpAnswer::json(response, QJsonDocument(QJsonObject{{QStringLiteral("waitedMs"), pause}}));
    });
    m_server.Get("/drop",
                 [](const Request &request, Response &) { BreakableServer::dropConnection(request); });
    m_server.Get("/drop-midway", [](const Request &request, Response &response) {
        constexpr size_t promised = size_t{64} * 1024;
        response.set_content_provider(promised, "application/octet-stream",
                                      // The request still exists while the body is sent.
                                      [&request](size_t, size_t, httplib::DataSink &sink) {
                                          const std::string begin(promised / 4, 'x');
                                          sink.write(begin.data(), begin.size());
                                          BreakableServer::dropConnection(request);
                                          return false;
                                      });
    });
    m_server.set_error_handler([](const Request &request, Response &response) {
        if (response.body.empty() && response.status == 404)
            HttpAnswer::problem(response, 404, QStringLiteral("Not found"),
                                QString::fromStdString(request.path));
    });
}

void DiagnosticRoutes::addEcho()
{
    m_server.Get("/echo", echo);
    m_server.Options("/echo", echo);
    m_server.Delete("/echo", httplib::Server::HandlerWithContentReader(echoBody));
    m_server.Post("/echo", httplib::Server::HandlerWithContentReader(echoBody));
    m_server.Put("/echo", httplib::Server::HandlerWithContentReader(echoBody));
    m_server.Patch("/echo", httplib::Server::HandlerWithContentReader(echoBody));
}

const QByteArray &DiagnosticRoutes::exportBody()
{
    std::call_once(m_exportMade, [this] { m_exportBody = orders(exportSize); });
    return m_exportBody;
}
