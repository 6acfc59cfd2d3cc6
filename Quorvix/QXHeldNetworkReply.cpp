#include "Quorvix/QXHeldNetworkReply.h"

#include "Platform/NSHTTPURLResponse.h"
#include "Platform/ReplyOutcome.h"

#include <QtCore/QCoreApplication>

#include <mutex>
#include <utility>

using namespace Quorvix;

/// The lock keeps the reply from being destroyed while the main thread sends it an event.
struct QXHeldNetworkReply::Link
{
    std::mutex mutex;
    QXHeldNetworkReply *reply = nullptr;
};

namespace {

/// The error with which Qt reports a status code.
QNetworkReply::NetworkError errorForStatus(int statusCode)
{
    switch (statusCode) {
    case 400:
    case 418:
        return QNetworkReply::ProtocolInvalidOperationError;
    case 401:
        return QNetworkReply::AuthenticationRequiredError;
    case 403:
        return QNetworkReply::ContentAccessDenied;
    case 404:
        return QNetworkReply::ContentNotFoundError;
    case 405:
        return QNetworkReply::ContentOperationNotPermittedError;
    case 407:
        return QNetworkReply::ProxyAuthenticationRequiredError;
    case 409:
        return QNetworkReply::ContentConflictError;
    case 410:
        return QNetworkReply::ContentGoneError;
    case 500:
        return QNetworkReply::InternalServerError;
    case 501:
        return QNetworkReply::OperationNotImplementedError;
    case 503:
        return QNetworkReply::ServiceUnavailableError;
    default:
        break;
    }
    if (statusCode > 500)
        return QNetworkReply::UnknownServerError;
    return statusCode >= 400 ? QNetworkReply::UnknownContentError : QNetworkReply::NoError;
}

/// Qt's own text in the language of the host.
QString cancelledText()
{
    const char *const contextOfQt = "QNetworkReplyHttpImpl";
    return QCoreApplication::translate(contextOfQt, "Operation canceled");
}

} // namespace

QXHeldNetworkReply::QXHeldNetworkReply(QNetworkReply *inner, Source source, QObject *parent)
    : QXNetworkReply(inner, std::move(source), parent), m_link(std::make_shared<Link>())
{
    m_link->reply = this;
}

QXHeldNetworkReply::~QXHeldNetworkReply()
{
    const std::scoped_lock lock(m_link->mutex);
    m_link->reply = nullptr;
}

void QXHeldNetworkReply::abort()
{
    if (m_stage == Stage::Running)
        QXNetworkReply::abort();
    else
        cancel();
}

void QXHeldNetworkReply::close()
{
    if (m_stage == Stage::Running)
        QXNetworkReply::close();
    else
        cancel();
}

qint64 QXHeldNetworkReply::bytesAvailable() const
{
    return m_isHeld ? 0 : QXNetworkReply::bytesAvailable();
}

bool QXHeldNetworkReply::canReadLine() const
{
    return !m_isHeld && QXNetworkReply::canReadLine();
}

qint64 QXHeldNetworkReply::readData(char *data, qint64 maxSize)
{
    return m_isHeld ? 0 : QXNetworkReply::readData(data, maxSize);
}

void QXHeldNetworkReply::innerMetaDataChanged() {}

void QXHeldNetworkReply::innerReadyRead()
{
    drain();
}

void QXHeldNetworkReply::innerDownloadProgress(qint64 received, qint64 total)
{
    if (isCancelled())
        QXNetworkReply::innerDownloadProgress(received, total);
}

void QXHeldNetworkReply::innerErrorOccurred(QNetworkReply::NetworkError error)
{
    if (isCancelled())
        QXNetworkReply::innerErrorOccurred(error);
}

/// A time-out closes the inner reply.
void QXHeldNetworkReply::innerAboutToClose()
{
    if (isCancelled())
        QXNetworkReply::innerAboutToClose();
    else
        drain();
}

void QXHeldNetworkReply::innerReadChannelFinished()
{
    if (isCancelled())
        QXNetworkReply::innerReadChannelFinished();
}

void QXHeldNetworkReply::innerFinished()
{
    if (isCancelled())
        return QXNetworkReply::innerFinished();
    drain();
    m_stage = Stage::Waiting;
    complete([link = m_link](const std::optional<QByteArray> &data, const NSURLResponsePtr &response,
                             const std::optional<NSError> &) {
        const std::scoped_lock lock(link->mutex);
        if (!link->reply)
            return;
        QMetaObject::invokeMethod(
            link->reply, [reply = link->reply, data, response] { reply->release(data, response); },
            Qt::QueuedConnection);
    });
}

void QXHeldNetworkReply::release(const std::optional<QByteArray> &data, const NSURLResponsePtr &response)
{
    if (m_stage != Stage::Waiting)
        return;
    if (!inner())
        return deleteLater();
    m_stage = Stage::Delivering;
    mirrorAddress();
    mirrorResponse();
    const Failure failure = takeEdits(response);
    setBody(data.value_or(QByteArray()));
    emitResponse(failure);
}

QXHeldNetworkReply::Failure QXHeldNetworkReply::takeEdits(const NSURLResponsePtr &response)
{
    const auto *const http = dynamic_cast<const NSHTTPURLResponse *>(response.get());
    const int delivered = inner()->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    Failure failure{inner()->error(), inner()->errorString()};
    if (!http)
        return failure;
    if (http->statusCode() != delivered) {
        const auto statusCode = static_cast<int>(http->statusCode());
        const QString reason = NSHTTPURLResponse::localizedStringForStatusCode(statusCode);
        setAttribute(QNetworkRequest::HttpStatusCodeAttribute, statusCode);
        setAttribute(QNetworkRequest::HttpReasonPhraseAttribute, reason);
        const bool isTransportError = ReplyOutcome::transportError(*inner(), false).has_value();
        if (!isTransportError)
            failure = {errorForStatus(statusCode),
                       QStringLiteral("Error transferring %1 - server replied: %2")
                           .arg(url().toDisplayString(), reason)};
    }
    for (const auto &[name, value] : http->allHeaderFields()) {
        const QByteArray rawName = description(name).toUtf8();
        const QString text = description(value);
        if (hasRawHeader(rawName) && ReplyOutcome::fieldText(rawHeader(rawName)) == text)
            continue;
        // Qt keeps the length that it has parsed first.
        if (isSameHeaderName(rawName, "Content-Length"))
            setHeader(QNetworkRequest::ContentLengthHeader, text.toLongLong());
        else
            setRawHeader(rawName, text.toUtf8());
    }
    return failure;
}

/// Emits what Qt emits for a response that has arrived in one piece. A slot of the host can end or destroy
/// this reply.
void QXHeldNetworkReply::emitResponse(const Failure &failure)
{
    const QPointer<QXHeldNetworkReply> guard(this);
    const auto goesOn = [&] {
        return guard && !isFinished();
    };

    if (inner()->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid())
        Q_EMIT metaDataChanged();
    if (!goesOn())
        return;
    m_isHeld = false;
    const qint64 size = bytesAvailable();
    if (size > 0)
        Q_EMIT readyRead();
    if (goesOn() && inner() && !inner()->isOpen())
        QXNetworkReply::innerAboutToClose();
    if (goesOn() && failure.error != NoError) {
        setError(failure.error, failure.text);
        Q_EMIT errorOccurred(failure.error);
    }
    if (goesOn())
        finish(size);
}

/// Does what Qt does when the host ends a reply that is still loading. A response that was not released stays
/// at its breakpoint.
void QXHeldNetworkReply::cancel()
{
    if (m_stage == Stage::Ended)
        return;
    const qint64 size = bytesAvailable();
    m_stage = Stage::Ended;
    const QPointer<QXHeldNetworkReply> guard(this);
    QXNetworkReply::innerAboutToClose();
    if (guard && error() == NoError) {
        setError(OperationCanceledError, cancelledText());
        Q_EMIT errorOccurred(OperationCanceledError);
    }
    if (guard)
        finish(size);
}

void QXHeldNetworkReply::finish(qint64 size)
{
    const QPointer<QXHeldNetworkReply> guard(this);
    m_stage = Stage::Ended;
    setFinished(true);
    Q_EMIT downloadProgress(size, size);
    if (guard)
        Q_EMIT readChannelFinished();
    if (guard)
        Q_EMIT finished();
    if (guard && m_isToBeDeleted)
        deleteLater();
}

void QXHeldNetworkReply::innerDeleteLater()
{
    if (m_stage == Stage::Waiting || m_stage == Stage::Delivering)
        m_isToBeDeleted = true;
    else
        QXNetworkReply::innerDeleteLater();
}
