#include "Examples/StoreApi.h"

#include <Quorvix/Platform/NSHTTPURLResponse.h>
#include <Quorvix/Platform/NSURLSession.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonDocument>
#include <QtCore/QPointer>
#include <QtCore/QUrlQuery>

using namespace Quorvix;

namespace {

/// Larger bodies are not parsed, because no screen shows them.
constexpr qsizetype largestParsedBody = qsizetype{1024} * 1024;

StoreReply makeReply(const std::optional<QByteArray> &data, const NSURLResponsePtr &response,
                     const std::optional<NSError> &error)
{
    StoreReply reply;
    reply.body = data.value_or(QByteArray());
    reply.error = error;
    if (reply.body.size() <= largestParsedBody)
        reply.json = QJsonDocument::fromJson(reply.body).object();
    if (const auto http = std::dynamic_pointer_cast<const NSHTTPURLResponse>(response)) {
        reply.status = static_cast<int>(http->statusCode());
        const auto tag = http->allHeaderFields().find(QStringLiteral("ETag"));
        if (tag != http->allHeaderFields().end())
            reply.entityTag = description(tag->second);
    }
    return reply;
}

} // namespace

QString StoreReply::problem() const
{
    if (error)
        return error->localizedDescription;
    const QString detail = json.value(QStringLiteral("detail")).toString();
    return detail.isEmpty() ? QStringLiteral("The store answered %1.").arg(status) : detail;
}

StoreApi::StoreApi(const QUrl &base, QObject *parent) : QObject(parent), m_base(base)
{
    // With it the handlers run on this thread in every build, with the inspector and without it.
    NSURLSession::shared().setCompletesOnMainThread(true);
}

URLRequest StoreApi::request(const QString &pathAndQuery, const QString &method) const
{
    URLRequest request(m_base.resolved(QUrl(pathAndQuery)));
    request.httpMethod = method;
    request.setValue(QStringLiteral("application/json"), QStringLiteral("Accept"));
    request.setValue(QStringLiteral("StoreApp/1.4"), QStringLiteral("User-Agent"));
    if (!m_token.isEmpty())
        request.setValue(QStringLiteral("Bearer ") + m_token, QStringLiteral("Authorization"));
    return request;
}

URLRequest StoreApi::jsonRequest(const QString &path, const QString &method, const QJsonObject &body) const
{
    URLRequest result = request(path, method);
    result.setValue(QStringLiteral("application/json"), QStringLiteral("Content-Type"));
    result.httpBody = QJsonDocument(body).toJson(QJsonDocument::Compact);
    return result;
}

URLRequest StoreApi::formRequest(const QString &path, const QList<QPair<QString, QString>> &fields) const
{
    QByteArray body;
    for (const auto &[name, value] : fields) {
        body += body.isEmpty() ? "" : "&";
        body += QUrl::toPercentEncoding(name) + '=' + QUrl::toPercentEncoding(value);
    }
    URLRequest result = request(path, QStringLiteral("POST"));
    result.setValue(QStringLiteral("application/x-www-form-urlencoded"), QStringLiteral("Content-Type"));
    result.httpBody = body;
    return result;
}

void StoreApi::send(const URLRequest &request, Done done)
{
    QElapsedTimer timer;
    timer.start();
    auto finish = [self = QPointer(this), done = std::move(done),
                   timer](const auto &data, const auto &response, const auto &error) {
        StoreReply reply = makeReply(data, response, error);
        reply.time = std::chrono::milliseconds(timer.elapsed());
        if (self)
            done(reply);
    };
    NSURLSession::shared().dataTaskWithRequest(request, std::move(finish))->resume();
}
