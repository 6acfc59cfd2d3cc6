#pragma once

#include "Quorvix/QXRequestRecorder.h"

/// Requests and responses as the tests of several subsystems need them.
namespace Exchanges {

/// Without a URL when @p url is empty.
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
