#include "Platform/URLLoader.h"

#include "Platform/ContentDecoder.h"
#include "Platform/HTTPRedirect.h"
#include "Platform/LoadingThread.h"
#include "Platform/MainThreadCompletion.h"
#include "Platform/ReplyOutcome.h"

#include <QtNetwork/QNetworkRequest>
#include <QtNetwork/QSslError>

#include <algorithm>
#include <climits>

namespace Quorvix {

namespace {

using Task = URLLoadTask;
using TaskPtr = std::shared_ptr<Task>;
using State = URLLoadTask::State;

using namespace std::chrono_literals;

void complete(Task &task, std::optional<QByteArray> data, NSURLResponsePtr response,
              std::optional<NSError> error)
{
    if (task.state.exchange(State::Completed) == State::Completed)
        return;
    const auto completionHandler = std::exchange(task.completionHandler, nullptr);
    if (!completionHandler || LoadingThread::isEnding())
        return;
    // The host's own code runs in here, and may take long.
    if (!completionHandler.target<MainThreadCompletion>())
        LoadingThread::deliverNow();
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

/// Offers the codings that ContentDecoder knows. Qt decodes nothing itself when the request has this header.
void addAcceptEncoding(QNetworkRequest &request)
{
    constexpr char name[] = "Accept-Encoding";
    if (!request.rawHeader(name).isEmpty())
        return;
    // Qt replaces an empty value, which accepts no coding, by its own.
    request.setRawHeader(name, request.hasRawHeader(name) ? "identity" : ContentDecoder::acceptedCodings);
}

QNetworkRequest makeWholeRequest(const Task &task, const NSURLSessionConfiguration &configuration)
{
    QNetworkRequest request(*task.current.url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    if (!configuration.httpShouldSetCookies) {
        request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
        request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    }
    addHeaders(request, configuration.httpAdditionalHeaders);
    if (task.current.allHTTPHeaderFields)
        addHeaders(request, *task.current.allHTTPHeaderFields);
    if (task.current.httpBody && !request.hasRawHeader("Content-Type"))
        request.setRawHeader("Content-Type", "application/x-www-form-urlencoded");
    addAcceptEncoding(request);
    return request;
}

QNetworkRequest makeRequest(const Task &task)
{
    URLLoadSession &session = *task.session;
    if (task.current.allHTTPHeaderFields || task.current.httpBody)
        return makeWholeRequest(task, session.configuration);
    // To copy a request takes a small part of the time that it takes to build one.
    if (!session.plainRequest)
        session.plainRequest = makeWholeRequest(task, session.configuration);
    QNetworkRequest request = *session.plainRequest;
    request.setUrl(*task.current.url);
    return request;
}

/// Whether Qt sends a body, which may be empty.
bool hasUpload(const QString &method, const std::optional<QByteArray> &body)
{
    return body || method == QLatin1StringView("POST") || method == QLatin1StringView("PUT");
}

/// The body for Qt to read; null when it is empty.
std::unique_ptr<UploadDevice> makeUpload(const std::optional<QByteArray> &body)
{
    return body && !body->isEmpty() ? std::make_unique<UploadDevice>(*body) : nullptr;
}

QNetworkReply *send(URLLoadManager &manager, const QNetworkRequest &request, const QByteArray &method,
                    UploadDevice *upload, bool hasUpload)
{
    // To a POST, Qt adds a content type that nobody has set, and prints a complaint. It does not to a custom
    // method.
    if (method == "PUT")
        return upload ? manager.put(request, upload) : manager.put(request, QByteArray());
    if (upload)
        return manager.sendCustomRequest(request, method, upload);
    if (hasUpload)
        return manager.sendCustomRequest(request, method, QByteArray());
    if (method == "GET")
        return manager.sendGet(request);
    if (method == "HEAD")
        return manager.head(request);
    if (method == "DELETE")
        return manager.deleteResource(request);
    return manager.sendCustomRequest(request, method);
}

// The result

std::optional<NSURLErrorCode> transportError(const QNetworkReply &reply, const Task &task)
{
    return ReplyOutcome::transportError(reply, task.state == State::Canceling);
}

void fail(Task &task, NSURLErrorCode code)
{
    complete(task, std::nullopt, nullptr, makeURLError(code));
}

/// The recorder keeps the buffer, so it has just the size of the body. Qt itself would read into one of at
/// least 32 kB, and of up to twice the size of a large body.
QByteArray readBody(QNetworkReply &reply)
{
    QByteArray body(reply.bytesAvailable(), Qt::Uninitialized);
    const qint64 read = reply.read(body.data(), body.size());
    body.truncate(std::max<qint64>(read, 0));
    // A device may have more than it says.
    if (read > 0)
        body.append(reply.readAll());
    if (body.capacity() > body.size())
        body.squeeze();
    return body;
}

/// Whether the body of a response is to be decoded.
bool isCoded(const QNetworkReply &reply)
{
    // A part of a coded body cannot be decoded without the parts before it (RFC 9110, 14.2).
    constexpr int partialContent = 206;
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() != partialContent &&
           reply.bytesAvailable() > 0 && ContentDecoder::canDecode(reply.rawHeader("Content-Encoding"));
}

void finish(Task &task, QNetworkReply &reply)
{
    auto code = transportError(reply, task);
    if (!code && ReplyOutcome::isCutShort(reply, reply.bytesAvailable(), sentMethod(task.current.httpMethod)))
        code = NSURLErrorNetworkConnectionLost;
    if (code)
        return complete(task, std::nullopt, ReplyOutcome::response(reply), makeURLError(*code));

    const bool decodes = isCoded(reply);
    if (decodes)
        LoadingThread::deliverNow();
    const auto isCancelled = [&task] {
        return task.state == State::Canceling || LoadingThread::isEnding();
    };
    auto body = decodes ? ContentDecoder::decode(reply, reply.rawHeader("Content-Encoding"),
                                                 task.session->configuration.maximumDecodedSize, isCancelled)
                        : Result(readBody(reply));
    // Reading may fail, too.
    if (code = transportError(reply, task); code)
        body = makeURLError(*code);
    if (!body)
        return complete(task, std::nullopt, ReplyOutcome::response(reply), body.error());
    using ReplyOutcome::BodyLength;
    auto response = ReplyOutcome::response(reply, decodes ? BodyLength::Changed : BodyLength::AsSent);
    complete(task, std::move(body).value(), std::move(response), std::nullopt);
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

/// Whether the request failed only because the connection of another one broke: Qt then fails all that wait
/// for a connection to the same server. Such a request can be sent again, whatever its method; one with an
/// empty body can not, because Qt never says that it was sent.
bool hasFailedBeside(const Task &task, const QNetworkReply &reply)
{
    // A server that accepts connections and closes them at once may look the same.
    constexpr int mostResends = 20;
    const auto &body = task.current.httpBody;
    const bool canTell = (body && !body->isEmpty()) || !hasUpload(sentMethod(task.current.httpMethod), body);
    const bool isSent = task.isSent || (task.upload && task.upload->isTouched());
    return canTell && !isSent && task.resends < mostResends && task.state == State::Running &&
           reply.error() == QNetworkReply::RemoteHostClosedError && !LoadingThread::isEnding();
}

/// Sends the request again, follows a redirect, or ends the task with the response.
void handleFinished(const TaskPtr &task, QNetworkReply &reply)
{
    reply.deleteLater();
    if (hasFailedBeside(*task, reply)) {
        ++task->resends;
        return sendCurrent(task);
    }
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    auto next = HTTPRedirect::follow(task->current, status, reply.rawHeader("Location"));
    if (!next || transportError(reply, *task))
        return finish(*task, reply);
    if (const auto problem = HTTPRedirect::problem(*next, ++task->redirects))
        return fail(*task, *problem);
    task->current = std::move(*next);
    sendCurrent(task);
}

/// Keeps a task as long as a reply, in the loading thread. Qt may destroy what a slot has captured in another
/// thread, in which it closes the connection.
class Keeper final : public URLLoadWatch
{
public:
    Keeper(QNetworkReply *reply, TaskPtr task, std::optional<std::chrono::milliseconds> timeout)
        : URLLoadWatch(reply, timeout), m_task(std::move(task))
    {
    }

    [[nodiscard]] const TaskPtr &task() const noexcept { return m_task; }

private:
    const TaskPtr m_task;
};

void sendCurrent(const TaskPtr &task)
{
    constexpr std::chrono::milliseconds longest(INT_MAX);
    const URLRequest &current = task->current;
    const QString method = sentMethod(current.httpMethod);
    const auto timeout =
        std::clamp(current.timeoutInterval.value_or(task->session->configuration.timeoutIntervalForRequest),
                   1ms, longest);
    QNetworkRequest request = makeRequest(*task);
    // Only Qt sees each part of a body that goes out: it does not tell of all of them.
    const bool isTimedByQt = hasUpload(method, current.httpBody);
    if (isTimedByQt)
        request.setTransferTimeout(int(timeout.count()));
    URLLoadManager &manager = *task->session->manager();
    auto upload = makeUpload(current.httpBody);
    QNetworkReply *const reply = send(manager, request, method.toUtf8(), upload.get(), isTimedByQt);
    task->reply = reply;
    task->upload = upload.get();
    if (upload)
        upload.release()->setParent(reply);
    task->isSent = false;
    auto *const keeper = new Keeper(reply, task, isTimedByQt ? std::nullopt : std::optional(timeout));
    manager.observe(*keeper);
    QObject::connect(reply, &QNetworkReply::requestSent, reply, [keeper] { keeper->task()->isSent = true; });
    if (current.url->scheme() == QLatin1StringView("https")) {
        QObject::connect(reply, &QNetworkReply::sslErrors, reply, [reply](const QList<QSslError> &errors) {
            ReplyOutcome::noteCertificateErrors(*reply, errors);
        });
    }
    QObject::connect(reply, &QNetworkReply::finished, reply,
                     [keeper, reply] { handleFinished(keeper->task(), *reply); });
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
