#include "Platform/URLLoader.h"

#include "Platform/HTTPHeaderName.h"
#include "Platform/HTTPRedirect.h"
#include "Platform/LoadingThread.h"
#include "Platform/NSHTTPURLResponse.h"
#include "Platform/UTF8Text.h"

#include <QtNetwork/QNetworkRequest>
#include <QtNetwork/QSslError>

#include <algorithm>

namespace Quorvix {

namespace {

using Task = URLLoadTask;
using TaskPtr = std::shared_ptr<Task>;
using State = URLLoadTask::State;

constexpr char certificateErrorProperty[] = "certificateError";

void complete(Task &task, std::optional<QByteArray> data, NSURLResponsePtr response,
              std::optional<NSError> error)
{
    if (task.state.exchange(State::Completed) == State::Completed)
        return;
    const auto completionHandler = std::exchange(task.completionHandler, nullptr);
    if (completionHandler && !LoadingThread::isEnding())
        completionHandler(std::move(data), std::move(response), std::move(error));
}

// The request

/// Whether @p text is a token (RFC 9110, 5.6.2), the form of every method and header name.
bool isToken(QByteArrayView text)
{
    constexpr QByteArrayView marks{"!#$%&'*+-.^_`|~"};
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [&](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               marks.contains(c);
    });
}

/// Whether @p text can be the value of a header. A line break in it would start another header.
bool isFieldValue(QByteArrayView text)
{
    return std::none_of(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

void addHeaders(QNetworkRequest &request, const HTTPHeaderFields &fields)
{
    for (auto it = fields.cbegin(); it != fields.cend(); ++it) {
        const QByteArray name = it.key().toUtf8();
        const QByteArray value = it.value().toUtf8();
        if (isToken(name) && isFieldValue(value))
            request.setRawHeader(name, value);
    }
}

QNetworkRequest makeRequest(const Task &task, const NSURLSessionConfiguration &configuration)
{
    QNetworkRequest request(*task.current.url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    const auto timeout = task.current.timeoutInterval.value_or(configuration.timeoutIntervalForRequest);
    request.setTransferTimeout(static_cast<int>(std::clamp<qint64>(timeout.count(), 1, INT_MAX)));
    if (!configuration.httpShouldSetCookies) {
        request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
        request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    }
    addHeaders(request, configuration.httpAdditionalHeaders);
    if (task.current.allHTTPHeaderFields)
        addHeaders(request, *task.current.allHTTPHeaderFields);
    if (task.current.httpBody && !request.hasRawHeader("Content-Type"))
        request.setRawHeader("Content-Type", "application/x-www-form-urlencoded");
    return request;
}

QNetworkReply *send(QNetworkAccessManager &manager, const QNetworkRequest &request, const QByteArray &method,
                    const std::optional<QByteArray> &body)
{
    if (method == "POST")
        return manager.post(request, body.value_or(QByteArray()));
    if (method == "PUT")
        return manager.put(request, body.value_or(QByteArray()));
    if (body)
        return manager.sendCustomRequest(request, method, *body);
    if (method == "GET")
        return manager.get(request);
    if (method == "HEAD")
        return manager.head(request);
    if (method == "DELETE")
        return manager.deleteResource(request);
    return manager.sendCustomRequest(request, method);
}

// The response

QString decodeField(const QByteArray &bytes)
{
    const std::optional<QString> text = UTF8Text::exact(bytes);
    return text ? *text : QString::fromLatin1(bytes);
}

NSURLResponsePtr makeResponse(const QNetworkReply &reply)
{
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid())
        return reply.error() == QNetworkReply::NoError ? std::make_shared<const NSURLResponse>(reply.url())
                                                       : nullptr;
    const bool http2 = reply.attribute(QNetworkRequest::Http2WasUsedAttribute).toBool();
    NSHeaderFields fields;
    for (const auto &[name, value] : reply.rawHeaderPairs())
        fields.insert_or_assign(decodeField(HTTPHeaderName::usualSpelling(name)), decodeField(value));
    return std::make_shared<const NSHTTPURLResponse>(
        reply.url(), status.toLongLong(), http2 ? QStringLiteral("HTTP/2.0") : QStringLiteral("HTTP/1.1"),
        std::move(fields));
}

NSURLErrorCode codeForCertificate(QSslError::SslError error)
{
    switch (error) {
    case QSslError::CertificateExpired:
        return NSURLErrorServerCertificateHasBadDate;
    case QSslError::CertificateNotYetValid:
        return NSURLErrorServerCertificateNotYetValid;
    case QSslError::SelfSignedCertificateInChain:
    case QSslError::UnableToGetLocalIssuerCertificate:
        return NSURLErrorServerCertificateHasUnknownRoot;
    default:
        return NSURLErrorServerCertificateUntrusted;
    }
}

/// The error that ended the transport. An HTTP status code is not an error: it arrives as a response.
std::optional<NSURLErrorCode> transportError(const QNetworkReply &reply, State state)
{
    const bool hasStatus = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
    switch (reply.error()) {
    case QNetworkReply::NoError:
        return std::nullopt;
    case QNetworkReply::OperationCanceledError:
        return state == State::Canceling ? NSURLErrorCancelled : NSURLErrorTimedOut;
    case QNetworkReply::TimeoutError:
    case QNetworkReply::ProxyTimeoutError:
        return NSURLErrorTimedOut;
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::ProxyNotFoundError:
        return NSURLErrorCannotFindHost;
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::ProxyConnectionRefusedError:
        return NSURLErrorCannotConnectToHost;
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::NetworkSessionFailedError:
        return NSURLErrorNetworkConnectionLost;
    case QNetworkReply::TemporaryNetworkFailureError:
        return NSURLErrorNotConnectedToInternet;
    case QNetworkReply::SslHandshakeFailedError: {
        const QVariant certificate = reply.property(certificateErrorProperty);
        return certificate.isValid() ? codeForCertificate(QSslError::SslError(certificate.toInt()))
                                     : NSURLErrorSecureConnectionFailed;
    }
    case QNetworkReply::ProtocolUnknownError:
        return NSURLErrorUnsupportedURL;
    case QNetworkReply::ProtocolFailure:
        return NSURLErrorCannotParseResponse;
    case QNetworkReply::ProtocolInvalidOperationError:
        if (!hasStatus)
            return NSURLErrorCannotParseResponse;
        break;
    case QNetworkReply::ContentNotFoundError:
    case QNetworkReply::ContentAccessDenied:
    case QNetworkReply::ContentGoneError:
        if (!hasStatus)
            return NSURLErrorResourceUnavailable;
        break;
    case QNetworkReply::UnknownContentError:
        if (!hasStatus)
            return NSURLErrorCannotDecodeContentData;
        break;
    case QNetworkReply::UnknownNetworkError:
        return NSURLErrorCannotConnectToHost;
    case QNetworkReply::UnknownProxyError:
        return NSURLErrorCannotConnectToHost;
    default:
        break;
    }
    // Qt's remaining errors mean a status of 400 and above.
    return hasStatus ? std::nullopt : std::optional(NSURLErrorUnknown);
}

void fail(Task &task, NSURLErrorCode code)
{
    complete(task, std::nullopt, nullptr, makeURLError(code));
}

void finish(Task &task, QNetworkReply &reply)
{
    const auto code = transportError(reply, task.state);
    auto response = makeResponse(reply);
    if (code)
        complete(task, std::nullopt, std::move(response), makeURLError(*code));
    else
        complete(task, reply.readAll(), std::move(response), std::nullopt);
}

/// Why a request cannot be sent; absent when it can.
std::optional<NSURLErrorCode> requestProblem(const URLRequest &request, const QStringList &schemes)
{
    if (!request.url || !schemes.contains(request.url->scheme()))
        return NSURLErrorUnsupportedURL;
    if (!request.url->isValid() || !isToken(sentMethod(request.httpMethod).toUtf8()))
        return NSURLErrorBadURL;
    return std::nullopt;
}

void sendCurrent(const TaskPtr &task);

/// Follows a redirect, or ends the task with the response.
void handleFinished(const TaskPtr &task, QNetworkReply &reply)
{
    static const QStringList webSchemes{QStringLiteral("http"), QStringLiteral("https")};

    reply.deleteLater();
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    auto next = HTTPRedirect::follow(task->current, status, reply.rawHeader("Location"));
    if (!next || transportError(reply, task->state))
        return finish(*task, reply);
    if (++task->redirects > HTTPRedirect::maximum)
        return fail(*task, NSURLErrorHTTPTooManyRedirects);
    if (const auto problem = requestProblem(*next, webSchemes))
        return fail(*task, *problem);
    task->current = std::move(*next);
    sendCurrent(task);
}

void sendCurrent(const TaskPtr &task)
{
    const QByteArray method = sentMethod(task->current.httpMethod).toUtf8();
    QNetworkReply *const reply =
        send(*task->session->manager(), makeRequest(*task, task->session->configuration), method,
             task->current.httpBody);
    task->reply = reply;
    QObject::connect(reply, &QNetworkReply::sslErrors, reply, [reply](const QList<QSslError> &errors) {
        if (!errors.isEmpty())
            reply->setProperty(certificateErrorProperty, int(errors.constFirst().error()));
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [task, reply] { handleFinished(task, *reply); });
}

} // namespace

void startLoading(const TaskPtr &task)
{
    static const QStringList schemes{QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("file"),
                                     QStringLiteral("data")};
    if (task->state != State::Running)
        return;
    if (const auto problem = requestProblem(task->request, schemes))
        return fail(*task, *problem);
    task->current = task->request;
    sendCurrent(task);
}

void cancelLoading(const TaskPtr &task)
{
    if (task->reply)
        task->reply->abort();
    else
        fail(*task, NSURLErrorCancelled);
}

} // namespace Quorvix
