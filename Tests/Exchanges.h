#pragma once

#include "Quorvix/QXRequestRecorder.h"

/// Requests and responses for the tests of several subsystems.
namespace Exchanges {

/// The time at which each trace is sent: 2023-11-14T22:13:20.900Z.
inline constexpr std::chrono::system_clock::time_point sent{std::chrono::milliseconds(1'700'000'000'900)};

/// A request; it has no URL when @p url is empty.
inline Quorvix::URLRequest makeRequest(const QString &url,
                                       const std::optional<QString> &method = QStringLiteral("GET"))
{
    Quorvix::URLRequest request;
    if (!url.isEmpty())
        request.url = QUrl(url);
    request.httpMethod = method;
    return request;
}

inline Quorvix::NSHTTPURLResponsePtr makeResponse(qint64 status, Quorvix::NSHeaderFields fields = {})
{
    return Quorvix::NSHTTPURLResponse::create(QUrl(QStringLiteral("http://host/")), status,
                                              QStringLiteral("HTTP/2.0"), std::move(fields));
}

/// An exchange without a response or an error; it has no URL when @p url is empty.
inline QXRequestTrace makeTrace(const QString &url, const Quorvix::HTTPHeaderFields &headers = {},
                                const std::optional<QByteArray> &body = {})
{
    Quorvix::URLRequest request = makeRequest(url);
    request.allHTTPHeaderFields = headers;
    request.httpBody = body;
    QXRequestTrace trace(QStringLiteral("ID"), request);
    trace.date = sent;
    return trace;
}

/// A response that arrives a second after a trace is sent.
inline QXResponseTrace makeResponseTrace(qint64 status, const std::optional<QByteArray> &body = {},
                                         const Quorvix::HTTPHeaderFields &headers = {})
{
    QXResponseTrace response(*makeResponse(status), body);
    response.headers = headers;
    response.date = sent + std::chrono::seconds(1);
    return response;
}

inline void record(const QString &id, const QString &url,
                   const std::optional<QString> &method = QStringLiteral("GET"))
{
    QXRequestRecorder::shared().record(id, makeRequest(url, method));
}

inline void complete(const QString &id, qint64 status, const QByteArray &body = {})
{
    QXRequestRecorder::shared().complete(id, makeResponse(status), body, {});
}

inline QStringList ids(const auto &traces)
{
    QStringList found;
    for (const QXRequestTrace &trace : traces)
        found.append(trace.id);
    return found;
}

} // namespace Exchanges
