#include "Quorvix/QXNetworkReply.h"

#include "Quorvix/QXReadableBody.h"
#include "Quorvix/QXReplyRegistry.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Platform/NSHTTPURLResponse.h"
#include "Platform/ReplyOutcome.h"

#include <QtCore/QEvent>
#include <QtCore/QMetaMethod>
#include <QtNetwork/QSslError>

#include <algorithm>
#include <array>
#include <utility>

using namespace Quorvix;

QXNetworkReply::QXNetworkReply(QNetworkReply *inner, Source source, QObject *parent)
    : QXMirrorReply(inner, parent), m_innerKey(inner), m_source(std::move(source)),
      m_exchange(ReplyOutcome::request(*inner, m_source.method, m_source.body))
{
    // The manager deletes its children in any order, but the inner reply must go with this one.
    inner->setParent(nullptr);
    QXReplyRegistry::shared().insert(inner, this);
    connectInner();
    inner->installEventFilter(this);
    // A synchronous request has ended already, and one for a file. Without an HTTP response no body is
    // recorded.
    if (isFinished()) {
        if (attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid())
            drain();
        complete();
    }
}

QXNetworkReply::~QXNetworkReply()
{
    if (!m_isComplete) {
        setCancelled();
        drain();
        complete();
    }
    QXReplyRegistry::shared().remove(m_innerKey, this);
    // Before the device from which it uploads, which is a member or a child of this reply.
    delete inner();
}

QXNetworkReply *QXNetworkReply::outerOf(const QNetworkReply *inner)
{
    return QXReplyRegistry::shared().outerOf(inner);
}

void QXNetworkReply::connectInner()
{
    connect(inner(), &QNetworkReply::redirected, this, &QXNetworkReply::innerRedirected);
    connect(inner(), &QNetworkReply::metaDataChanged, this, &QXNetworkReply::innerMetaDataChanged);
    connect(inner(), &QNetworkReply::readyRead, this, &QXNetworkReply::innerReadyRead);
    connect(inner(), &QNetworkReply::finished, this, &QXNetworkReply::innerFinished);
    if (url().scheme() == QLatin1StringView("https"))
        connectTls();
    // A reply of Qt closes itself only after a time-out.
    if (!isOfQt() || request().transferTimeout() > 0)
        connect(inner(), &QNetworkReply::aboutToClose, this, &QXNetworkReply::innerAboutToClose);
}

void QXNetworkReply::connectTls()
{
    m_isTlsConnected = true;
    connect(inner(), &QNetworkReply::encrypted, this, &QNetworkReply::encrypted);
    connect(inner(), &QNetworkReply::preSharedKeyAuthenticationRequired, this,
            &QNetworkReply::preSharedKeyAuthenticationRequired);
    connect(inner(), &QNetworkReply::sslErrors, this, [this](const QList<QSslError> &errors) {
        ReplyOutcome::noteCertificateErrors(*inner(), errors);
        Q_EMIT sslErrors(errors);
    });
}

/// Connections take much of the time of a short exchange. So the signals that hosts seldom use are passed on
/// only when the host connects to them. Any thread.
void QXNetworkReply::connectNotify(const QMetaMethod &signal)
{
    static const std::array wanted{
        QMetaMethod::fromSignal(&QNetworkReply::socketStartedConnecting),
        QMetaMethod::fromSignal(&QNetworkReply::requestSent),
        QMetaMethod::fromSignal(&QNetworkReply::uploadProgress),
        QMetaMethod::fromSignal(&QNetworkReply::downloadProgress),
        QMetaMethod::fromSignal(&QNetworkReply::readChannelFinished),
        QMetaMethod::fromSignal(&QNetworkReply::errorOccurred),
    };
    const auto found = std::find(wanted.begin(), wanted.end(), signal);
    const unsigned bit = 1U << (found - wanted.begin());
    if (found == wanted.end() || (m_wantedSignals.fetch_or(bit) & bit) || !inner())
        return;
    switch (found - wanted.begin()) {
    case 0:
        connect(inner(), &QNetworkReply::socketStartedConnecting, this,
                &QNetworkReply::socketStartedConnecting);
        break;
    case 1:
        connect(inner(), &QNetworkReply::requestSent, this, &QNetworkReply::requestSent);
        break;
    case 2:
        connect(inner(), &QNetworkReply::uploadProgress, this, [this](qint64 sent, qint64 total) {
            mirrorState();
            Q_EMIT uploadProgress(sent, total);
        });
        break;
    case 3:
        connect(inner(), &QNetworkReply::downloadProgress, this, &QXNetworkReply::innerDownloadProgress);
        break;
    case 4:
        connect(inner(), &QNetworkReply::readChannelFinished, this,
                &QXNetworkReply::innerReadChannelFinished);
        break;
    default:
        connect(inner(), &QNetworkReply::errorOccurred, this, &QXNetworkReply::innerErrorOccurred);
    }
}

// What the host calls

void QXNetworkReply::abort()
{
    if (!inner())
        return;
    noteCancelling();
    inner()->abort();
}

void QXNetworkReply::close()
{
    if (!inner())
        return QNetworkReply::close();
    noteCancelling();
    inner()->close();
}

/// Qt closes a running reply before it emits anything else.
void QXNetworkReply::noteCancelling()
{
    if (inner()->isFinished())
        return;
    setCancelled();
    if (isOfQt())
        innerAboutToClose();
}

/// Opening or closing a device empties its buffer. Qt keeps a compressed body elsewhere, and some others.
void QXNetworkReply::loseUnread()
{
    if (!isCompressed() && !attribute(QNetworkRequest::DownloadBufferAttribute).isValid())
        m_body.loseUnread();
}

bool QXNetworkReply::open(OpenMode mode)
{
    loseUnread();
    return QNetworkReply::open(mode);
}

void QXNetworkReply::setReadBufferSize(qint64 size)
{
    QNetworkReply::setReadBufferSize(size);
    // A response that is held is kept as a whole, so that the inner reply must not wait for the host.
    if (inner() && !holdsResponse())
        inner()->setReadBufferSize(size);
}

qint64 QXNetworkReply::size() const
{
    if (isSequential())
        return QNetworkReply::size();
    return m_body.bytes()->size() + (inner()->isOpen() ? inner()->bytesAvailable() : 0);
}

bool QXNetworkReply::seek(qint64 position)
{
    if (!isSequential()) {
        drain();
        m_body.seek(position);
    }
    return QNetworkReply::seek(position);
}

qint64 QXNetworkReply::bytesAvailable() const
{
    if (!isSequential())
        return QNetworkReply::bytesAvailable();
    const qint64 own = QNetworkReply::bytesAvailable() + m_body.unread();
    return inner() && inner()->isOpen() ? own + inner()->bytesAvailable() : own;
}

bool QXNetworkReply::canReadLine() const
{
    return QNetworkReply::canReadLine() || (!isCompressed() && m_body.hasLine()) ||
           (inner() && inner()->canReadLine());
}

qint64 QXNetworkReply::readData(char *data, qint64 maxSize)
{
    return m_body.read(inner(), data, maxSize, bodyLimit());
}

// What the inner reply tells

bool QXNetworkReply::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != inner() || event->type() != QEvent::DeferredDelete)
        return QNetworkReply::eventFilter(watched, event);
    innerDeleteLater();
    return true;
}

/// A manager can delete its replies. For the host, this is the reply.
void QXNetworkReply::innerDeleteLater()
{
    deleteLater();
}

bool QXNetworkReply::readsThrough() const
{
    // Qt saves a compressed body in its cache while it is read, and must itself come to the end of what it
    // has in its cache.
    return readBufferSize() > 0 || isCompressed() ||
           inner()->attribute(QNetworkRequest::SourceIsFromCacheAttribute).toBool();
}

std::optional<qsizetype> QXNetworkReply::bodyLimit() const
{
    return holdsResponse() ? std::nullopt : QXRequestRecorder::shared().bodyBudget();
}

void QXNetworkReply::drain()
{
    if (inner())
        m_body.drain(*inner(), bodyLimit());
}

void QXNetworkReply::innerRedirected(const QUrl &url)
{
    mirrorAddress();
    mirrorResponse();
    if (!m_isTlsConnected && url.scheme() == QLatin1StringView("https"))
        connectTls();
    if (!std::exchange(m_isRedirected, true))
        connect(this, &QNetworkReply::redirectAllowed, inner(), &QNetworkReply::redirectAllowed);
    Q_EMIT redirected(url);
}

void QXNetworkReply::innerMetaDataChanged()
{
    mirrorAddress();
    mirrorResponse();
    m_hasResponse = true;
    Q_EMIT metaDataChanged();
}

void QXNetworkReply::innerReadyRead()
{
    mirrorOpening();
    if (!readsThrough())
        drain();
    mirrorState();
    // A reply of the host's own class need not report its headers.
    if (!isOfQt()) {
        mirrorAddress();
        mirrorResponse();
    }
    Q_EMIT readyRead();
}

void QXNetworkReply::innerDownloadProgress(qint64 received, qint64 total)
{
    mirrorState();
    Q_EMIT downloadProgress(received, total);
}

void QXNetworkReply::innerErrorOccurred(QNetworkReply::NetworkError error)
{
    mirrorState();
    mirrorAddress();
    mirrorResponse();
    Q_EMIT errorOccurred(error);
}

void QXNetworkReply::innerAboutToClose()
{
    // The bytes that the host has not read are lost with this.
    drain();
    QNetworkReply::close();
    loseUnread();
}

void QXNetworkReply::innerReadChannelFinished()
{
    mirrorState();
    Q_EMIT readChannelFinished();
}

void QXNetworkReply::innerFinished()
{
    drain();
    mirrorState();
    mirrorAddress();
    // A reply from the cache says so only after it has reported its headers.
    if (!m_hasResponse || !isOfQt())
        mirrorResponse();
    complete();
    // A reply of the host can say so after it has emitted the signal.
    if (!isOfQt() && !isFinished()) {
        const auto mirrorLater = [this] {
            if (inner())
                mirrorState();
        };
        QMetaObject::invokeMethod(this, mirrorLater, Qt::QueuedConnection);
    }
    Q_EMIT finished();
}

// The report

/// Whether Qt could not decode the body. Called after all bytes were read, because a read can fail, too.
bool QXNetworkReply::isUndecodable() const
{
    // Qt has the same error for some status codes, always with this text.
    return inner()->error() == UnknownContentError && isCompressed() &&
           !inner()->errorString().startsWith(QLatin1StringView("Error transferring "));
}

/// Whether bytes are missing that the server has announced. Qt does not always tell.
bool QXNetworkReply::isCutShort() const
{
    return isOfQt() && !isCancelled() &&
           ReplyOutcome::isCutShort(*inner(), m_body.takenSize(), m_source.method);
}

std::optional<NSError> QXNetworkReply::transportError() const
{
    if (!inner())
        return makeURLError(NSURLErrorCancelled);
    if (!inner()->isFinished() && isCancelled())
        return makeURLError(NSURLErrorCancelled);
    if (isUndecodable())
        return makeURLError(NSURLErrorCannotDecodeRawData);
    if (const auto code = ReplyOutcome::transportError(*inner(), isCancelled()))
        return makeURLError(*code);
    return isCutShort() ? std::optional(makeURLError(NSURLErrorNetworkConnectionLost)) : std::nullopt;
}

void QXNetworkReply::complete(const DataTaskCompletionHandler &deliver)
{
    if (std::exchange(m_isComplete, true))
        return;
    m_body.squeeze();
    if (m_source.tee && inner()) {
        m_source.body = m_source.tee->takeCopy();
        if (m_source.body)
            m_source.body->squeeze();
        m_exchange.amend(ReplyOutcome::request(*inner(), m_source.method, m_source.body),
                         m_source.tee->discardedSize());
    }
    m_source.body.reset();
    const NSURLResponsePtr response = inner() ? ReplyOutcome::response(*inner()) : nullptr;
    std::optional<QByteArray> body = m_body.bytes();
    if (deliver)
        return m_exchange.complete(response, body, transportError(), deliver);
    // The host has asked for this coding, or Qt would have decoded it.
    if (body && isOfQt() && !isCompressed())
        body = QXReadableBody::decoded(*body, rawHeader("Content-Encoding"));
    m_exchange.complete(response, body, transportError(), m_body.discardedSize());
}

bool QXNetworkReply::refresh(const QString &id)
{
    const auto matches = [&](const QXNetworkReply *reply) {
        return reply->exchangeId() == id;
    };
    return QXReplyRegistry::shared().visit(matches, [](QXNetworkReply *reply) {
        QMetaObject::invokeMethod(
            reply, [reply] { reply->reportProgress(); }, Qt::QueuedConnection);
    });
}

void QXNetworkReply::reportProgress()
{
    if (m_isComplete || !inner())
        return;
    std::optional<QByteArray> soFar = m_body.bytes();
    // What Qt has decompressed it would also have saved in its cache.
    if (soFar && !isCompressed() && inner()->isOpen())
        *soFar += inner()->peek(inner()->bytesAvailable());
    m_exchange.progress(ReplyOutcome::response(*inner()), soFar, m_body.discardedSize());
}

void QXNetworkReply::setBody(const QByteArray &body)
{
    m_body.replace(body);
}
