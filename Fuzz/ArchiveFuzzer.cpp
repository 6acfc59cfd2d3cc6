// Checks archives with another reader of JSON: what HAR 1.2 requires, and that nothing of an exchange is
// lost.

#include "FuzzCheck.h"
#include "FuzzParts.h"

#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXRequestTrace.h"

#include "Platform/ReplyOutcome.h"
#include "Platform/URLText.h"

#include <QtCore/QBuffer>
#include <QtCore/QDateTime>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <cmath>
#include <span>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

QString sanitized(const QString &text)
{
    return QString::fromUtf8("x" + text.toUtf8()).sliced(1);
}

std::chrono::system_clock::time_point dateOf(const QByteArray &milliseconds)
{
    return std::chrono::system_clock::time_point(
        std::chrono::milliseconds(milliseconds.toLongLong() % 9'000'000'000'000));
}

/// The exchange of an input. The letters of the first part tell what there is.
QXRequestTrace traceOf(FuzzParts &parts)
{
    const QByteArray has = parts.take();
    URLRequest request;
    const QByteArray url = parts.take();
    if (has.contains('u'))
        request.url = QUrl::fromEncoded(url);
    const QByteArray method = parts.take();
    request.httpMethod = has.contains('m') ? std::optional(QString::fromUtf8(method)) : std::nullopt;
    for (const auto &[name, value] : parts.takeFields())
        request.setValue(ReplyOutcome::fieldText(value), ReplyOutcome::fieldText(name));
    QXRequestTrace trace(u"id"_s, request);
    trace.date = dateOf(parts.take());
    const QByteArray duration = parts.take();
    if (has.contains('d'))
        trace.duration = duration.toDouble();
    const QByteArray status = parts.take();
    NSHeaderFields fields;
    for (const auto &[name, value] : parts.takeFields())
        fields.insert_or_assign(ReplyOutcome::fieldText(name), ReplyOutcome::fieldText(value));
    const QByteArray body = parts.take();
    if (has.contains('b'))
        trace.body = body;
    else if (has.contains('x'))
        trace.discardedBodySize = body.size();
    if (!has.contains('r'))
        return trace;
    const QByteArray answer = parts.takeRest();
    trace.response =
        QXResponseTrace(NSHTTPURLResponse(request.url, status.toLongLong(), u"HTTP/1.1"_s, fields),
                        has.contains('B') ? std::optional(answer) : std::nullopt);
    trace.response->date = trace.date;
    if (has.contains('X') && !has.contains('B'))
        trace.response->discardedBodySize = answer.size();
    return trace;
}

void checkKeys(const QJsonObject &object, QStringList required, const QStringList &optional = {})
{
    for (const QString &key : object.keys())
        check(required.removeOne(key) || optional.contains(key), "no key is unknown");
    check(required.isEmpty(), "no key is missing");
}

void checkPairs(const QJsonValue &list)
{
    check(list.isArray(), "pairs are a list");
    for (const auto pair : list.toArray()) {
        checkKeys(pair.toObject(), {u"name"_s, u"value"_s});
        check(pair[u"name"_s].isString() && pair[u"value"_s].isString(), "a pair is two texts");
    }
}

void checkHeaders(const QJsonValue &list, const std::optional<HTTPHeaderFields> &headers)
{
    checkPairs(list);
    const HTTPHeaderFields expected = headers.value_or(HTTPHeaderFields());
    check(list.toArray().size() == expected.size(), "every header is there");
    qsizetype i = 0;
    for (auto it = expected.cbegin(); it != expected.cend(); ++it, ++i) {
        check(list[i][u"name"_s].toString() == sanitized(it.key()) &&
                  list[i][u"value"_s].toString() == sanitized(it.value()),
              "a header is written as it was received");
    }
}

void checkBody(const QJsonObject &written, const std::optional<QByteArray> &body)
{
    check(written[u"mimeType"_s].isString(), "a body has a type");
    if (!body)
        return check(!written.contains(u"text"_s) && !written.contains(u"encoding"_s), "no body, no text");
    const QString text = written[u"text"_s].toString();
    const bool isText = QUtf8StringView(body->constData(), body->size()).isValidUtf8();
    check(written.contains(u"encoding"_s) != isText, "only bytes are encoded");
    check(isText || written[u"encoding"_s] == u"base64"_s, "they are encoded as Base64");
    const auto decoded =
        QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    check(isText ? text.toUtf8() == *body : decoded && *decoded == *body, "no byte of a body is lost");
}

void checkDate(const QJsonValue &date, std::chrono::system_clock::time_point expected)
{
    const QDateTime read = QDateTime::fromString(date.toString(), Qt::ISODate);
    check(read.isValid() && date.toString().endsWith(u'Z'), "a date is one of ISO 8601, in UTC");
    check(read.toSecsSinceEpoch() ==
              std::chrono::floor<std::chrono::seconds>(expected).time_since_epoch().count(),
          "a date is that of the exchange");
}

void checkRequest(const QJsonObject &request, const QXRequestTrace &trace)
{
    const bool hasBody = trace.body || trace.discardedBodySize;
    checkKeys(request,
              {u"bodySize"_s, u"cookies"_s, u"headers"_s, u"headersSize"_s, u"httpVersion"_s, u"method"_s,
               u"queryString"_s, u"url"_s},
              {u"postData"_s});
    check(request[u"method"_s] == sanitized(sentMethod(trace.method)), "the method");
    check(request[u"url"_s] == (trace.url ? absoluteString(*trace.url) : QString()), "the URL");
    check(request[u"bodySize"_s].toInteger(-2) ==
              (trace.body ? trace.body->size() : trace.discardedBodySize.value_or(-1)),
          "the size of the request's body");
    check(request.contains(u"postData"_s) == hasBody, "a body is posted if there is one");
    if (hasBody) {
        checkKeys(request[u"postData"_s].toObject(), {u"mimeType"_s},
                  {u"text"_s, u"encoding"_s, u"comment"_s});
        checkBody(request[u"postData"_s].toObject(), trace.body);
    }
    checkHeaders(request[u"headers"_s], trace.headers);
    checkPairs(request[u"cookies"_s]);
    checkPairs(request[u"queryString"_s]);
    const QString query = trace.url ? trace.url->query(QUrl::FullyEncoded) : QString();
    check(request[u"queryString"_s].toArray().size() == (query.isEmpty() ? 0 : query.count(u'&') + 1),
          "every item of a query is there");
}

void checkResponse(const QJsonObject &response, const std::optional<QXResponseTrace> &trace)
{
    checkKeys(response, {u"bodySize"_s, u"content"_s, u"cookies"_s, u"headers"_s, u"headersSize"_s,
                         u"httpVersion"_s, u"redirectURL"_s, u"status"_s, u"statusText"_s});
    check(response[u"status"_s].toInteger(-1) == (trace ? trace->statusCode : 0), "the status");
    check(response[u"statusText"_s].toString().isEmpty() != trace.has_value(), "a status has a text");
    const auto body = trace ? trace->body : std::nullopt;
    const qint64 size = body ? body->size() : trace ? trace->discardedBodySize.value_or(-1) : -1;
    check(response[u"bodySize"_s].toInteger(-2) == size, "the size of the response's body");
    const QJsonObject content = response[u"content"_s].toObject();
    checkKeys(content, {u"mimeType"_s, u"size"_s}, {u"text"_s, u"encoding"_s, u"comment"_s});
    check(content[u"size"_s].toInteger(-2) == qMax(size, qint64(0)), "the size of the content");
    checkBody(content, body);
    checkHeaders(response[u"headers"_s], trace ? trace->headers : std::nullopt);
    checkPairs(response[u"cookies"_s]);
}

void checkEntry(const QJsonObject &entry, const QXRequestTrace &trace)
{
    checkKeys(entry,
              {u"cache"_s, u"request"_s, u"response"_s, u"startedDateTime"_s, u"time"_s, u"timings"_s});
    checkDate(entry[u"startedDateTime"_s], trace.date);
    const double duration = trace.duration.value_or(0) * 1000;
    const double time = entry[u"time"_s].toDouble(-1);
    check(time == (std::isfinite(duration) ? duration : 0), "the time is that of the exchange");
    const QJsonObject timings = entry[u"timings"_s].toObject();
    checkKeys(timings, {u"receive"_s, u"send"_s, u"wait"_s});
    check(timings[u"send"_s].toDouble(-1) + timings[u"wait"_s].toDouble(-1) +
                  timings[u"receive"_s].toDouble(-1) ==
              time,
          "the timings add up to the time");
    checkRequest(entry[u"request"_s].toObject(), trace);
    checkResponse(entry[u"response"_s].toObject(), trace.response);
    if (trace.response)
        checkDate(entry[u"cache"_s][u"afterRequest"_s][u"lastAccess"_s], trace.response->date);
    else
        check(entry[u"cache"_s].toObject().isEmpty(), "without a response nothing is cached");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzParts parts(view(data, size));
    const QXRequestTrace trace = traceOf(parts);
    const std::span list(&trace, 1);
    const QByteArray archive = QXArchiveWriter::archive(QXArchiveWriter::sourceOf(list));
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    check(!QXArchiveWriter::archive(QXArchiveWriter::sourceOf(list), device), "an archive can be written");
    check(device.data() == archive, "a device gets the same archive");

    check(QUtf8StringView(archive.constData(), archive.size()).isValidUtf8(), "an archive is UTF-8");
    QJsonParseError error;
    const QJsonObject document = QJsonDocument::fromJson(archive, &error).object();
    check(error.error == QJsonParseError::NoError, "an archive is JSON");
    checkKeys(document, {u"log"_s});
    const QJsonObject log = document[u"log"_s].toObject();
    checkKeys(log, {u"creator"_s, u"entries"_s, u"version"_s});
    check(log[u"version"_s] == u"1.2"_s && log[u"creator"_s][u"name"_s].isString(),
          "an archive tells what it is");
    check(log[u"entries"_s].toArray().size() == 1, "there is one entry for each exchange");
    checkEntry(log[u"entries"_s][0].toObject(), trace);
    return 0;
}
