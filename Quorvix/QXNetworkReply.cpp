#include "Quorvix/QXNetworkReply.h"

#include "Quorvix/QXReplyRegistry.h"

#include "Platform/NSHTTPURLResponse.h"
#include "Platform/ReplyOutcome.h"

#include <QtCore/QEvent>
#include <QtCore/QMetaMethod>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QSslError>

#include <algorithm>
#include <array>
#include <utility>

using namespace Quorvix;

namespace {

/// The attributes that Qt gives to its replies.
constexpr std::array replyAttributes{
    QNetworkRequest::HttpStatusCodeAttribute,        QNetworkRequest::HttpReasonPhraseAttribute,
    QNetworkRequest::RedirectionTargetAttribute,     QNetworkRequest::ConnectionEncryptedAttribute,
    QNetworkRequest::SourceIsFromCacheAttribute,     QNetworkRequest::HttpPipeliningWasUsedAttribute,
    QNetworkRequest::DownloadBufferAttribute,        QNetworkRequest::Http2WasUsedAttribute,
    QNetworkRequest::OriginalContentLengthAttribute,
};
/// The attributes that a host can give to replies of its own: those of Qt end far below the first number, and
/// those of hosts begin with QNetworkRequest::User.
constexpr int endOfQtAttributes = 64;
constexpr int userAttributes = 16;

} // namespace

QXNetworkReply::QXNetworkReply(QNetworkReply *inner, Source source, QObject *parent)
    : QNetworkReply(parent), m_inner(inner), m_innerKey(inner), m_source(std::move(source)),
      m_exchange(ReplyOutcome::request(*inner, m_source.method, m_source.body)),
      m_isOfQt(inner->inherits("QNetworkReplyHttpImpl"))
{
    // The manager deletes its children in any order, but the inner reply must go with this one.
    inner->setParent(nullptr);
    QXReplyRegistry::shared().insert(inner, this);
    setObjectName(inner->objectName());
    const QList<QByteArray> properties = inner->dynamicPropertyNames();
    for (const QByteArray &name : properties)
        setProperty(name.constData(), inner->property(name.constData()));
    QNetworkReply::setReadBufferSize(inner->readBufferSize());
    setOpenMode(inner->openMode());
    setRequest(inner->request());
    mirrorState();
    mirrorAddress();
    constexpr auto encrypted = QNetworkRequest::ConnectionEncryptedAttribute;
    if (m_isOfQt && !inner->isFinished())
        setAttribute(encrypted, inner->attribute(encrypted));
    else
        mirrorResponse();
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
        m_isCancelled = true;
        drain();
        complete();
    }
    QXReplyRegistry::shared().remove(m_innerKey, this);
    // Before the device from which it uploads, which is a member or a child of this reply.
    delete m_inner.data();
}

QXNetworkReply *QXNetworkReply::outerOf(const QNetworkReply *inner)
{
    return QXReplyRegistry::shared().outerOf(inner);
}

void QXNetworkReply::connectInner()
{
    connect(m_inner, &QNetworkReply::redirected, this, &QXNetworkReply::innerRedirected);
    connect(m_inner, &QNetworkReply::metaDataChanged, this, &QXNetworkReply::innerMetaDataChanged);
    connect(m_inner, &QNetworkReply::readyRead, this, &QXNetworkReply::innerReadyRead);
    connect(m_inner, &QNetworkReply::finished, this, &QXNetworkReply::innerFinished);
    if (url().scheme() == QLatin1StringView("https"))
        connectTls();
    // A reply of Qt closes itself only after a time-out.
    if (!m_isOfQt || request().transferTimeout() > 0)
        connect(m_inner, &QNetworkReply::aboutToClose, this, &QXNetworkReply::innerAboutToClose);
}

void QXNetworkReply::connectTls()
{
    m_isTlsConnected = true;
    connect(m_inner, &QNetworkReply::encrypted, this, &QNetworkReply::encrypted);
    connect(m_inner, &QNetworkReply::preSharedKeyAuthenticationRequired, this,
            &QNetworkReply::preSharedKeyAuthenticationRequired);
    connect(m_inner, &QNetworkReply::sslErrors, this, [this](const QList<QSslError> &errors) {
        ReplyOutcome::noteCertificateErrors(*m_inner, errors);
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
    if (found == wanted.end() || (m_wantedSignals.fetch_or(bit) & bit) || !m_inner)
        return;
    switch (found - wanted.begin()) {
    case 0:
        connect(m_inner, &QNetworkReply::socketStartedConnecting, this,
                &QNetworkReply::socketStartedConnecting);
        break;
    case 1:
        connect(m_inner, &QNetworkReply::requestSent, this, &QNetworkReply::requestSent);
        break;
    case 2:
        connect(m_inner, &QNetworkReply::uploadProgress, this, [this](qint64 sent, qint64 total) {
            mirrorState();
            Q_EMIT uploadProgress(sent, total);
        });
        break;
    case 3:
        connect(m_inner, &QNetworkReply::downloadProgress, this, &QXNetworkReply::innerDownloadProgress);
        break;
    case 4:
        connect(m_inner, &QNetworkReply::readChannelFinished, this,
                &QXNetworkReply::innerReadChannelFinished);
        break;
    default:
        connect(m_inner, &QNetworkReply::errorOccurred, this, &QXNetworkReply::innerErrorOccurred);
    }
}

void QXNetworkReply::mirrorState()
{
    if (m_inner->error() != error())
        setError(m_inner->error(), m_inner->errorString());
    if (m_inner->isFinished())
        setFinished(true);
}

void QXNetworkReply::mirrorAddress()
{
    setUrl(m_inner->url());
    setOperation(m_inner->operation());
}

void QXNetworkReply::mirrorResponse()
{
    mirrorHeaders(*m_inner);
    m_isCompressed = hasRawHeader("Content-Encoding") && request().rawHeader("Accept-Encoding").isEmpty();
    const auto mirror = [this](QNetworkRequest::Attribute code) {
        if (const QVariant value = m_inner->attribute(code); value.isValid())
            setAttribute(code, value);
    };
    if (m_isOfQt) {
        std::for_each(replyAttributes.begin(), replyAttributes.end(), mirror);
        return;
    }
    mirrorOpening();
    for (int code = 0; code < endOfQtAttributes; ++code)
        mirror(static_cast<QNetworkRequest::Attribute>(code));
    for (int code = 0; code < userAttributes; ++code)
        mirror(static_cast<QNetworkRequest::Attribute>(QNetworkRequest::User + code));
}

/// A reply of the host can open itself late.
void QXNetworkReply::mirrorOpening()
{
    if (!m_isOfQt && !isOpen() && !m_isCancelled)
        setOpenMode(m_inner->openMode());
}

void QXNetworkReply::mirrorHeaders(const QNetworkReply &from)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    setHeaders(from.headers());
#else
    if (from.rawHeaderPairs() == rawHeaderPairs())
        return;
    const QList<QByteArray> old = rawHeaderList();
    for (const QByteArray &name : old)
        setRawHeader(name, QByteArray());
    // Qt keeps the first length of several, which it would not find in the joined text.
    if (const QVariant length = from.header(QNetworkRequest::ContentLengthHeader); length.isValid())
        setHeader(QNetworkRequest::ContentLengthHeader, length);
    for (const auto &[name, value] : from.rawHeaderPairs())
        setRawHeader(name, value);
#endif
}

// What the host calls

void QXNetworkReply::abort()
{
    if (!m_inner)
        return;
    noteCancelling();
    m_inner->abort();
}

void QXNetworkReply::close()
{
    if (!m_inner)
        return QNetworkReply::close();
    noteCancelling();
    m_inner->close();
}

/// Qt closes a running reply before it emits anything else.
void QXNetworkReply::noteCancelling()
{
    if (m_inner->isFinished())
        return;
    m_isCancelled = true;
    if (m_isOfQt)
        innerAboutToClose();
}

/// Opening or closing a device empties its buffer. Qt keeps a compressed body elsewhere, and some others.
void QXNetworkReply::loseUnread()
{
    if (!m_isCompressed && !attribute(QNetworkRequest::DownloadBufferAttribute).isValid())
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
    if (m_inner && !holdsResponse())
        m_inner->setReadBufferSize(size);
}

void QXNetworkReply::ignoreSslErrors()
{
    if (m_inner)
        m_inner->ignoreSslErrors();
}

void QXNetworkReply::ignoreSslErrorsImplementation(const QList<QSslError> &errors)
{
    if (m_inner)
        m_inner->ignoreSslErrors(errors);
}

void QXNetworkReply::sslConfigurationImplementation(QSslConfiguration &configuration) const
{
    if (m_inner)
        configuration = m_inner->sslConfiguration();
}

void QXNetworkReply::setSslConfigurationImplementation(const QSslConfiguration &configuration)
{
    if (m_inner)
        m_inner->setSslConfiguration(configuration);
}

bool QXNetworkReply::isSequential() const
{
    return !m_inner || m_inner->isSequential();
}

qint64 QXNetworkReply::size() const
{
    if (isSequential())
        return QNetworkReply::size();
    return m_body.bytes().size() + (m_inner->isOpen() ? m_inner->bytesAvailable() : 0);
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
    return m_inner && m_inner->isOpen() ? own + m_inner->bytesAvailable() : own;
}

bool QXNetworkReply::canReadLine() const
{
    return QNetworkReply::canReadLine() || (!m_isCompressed && m_body.hasLine()) ||
           (m_inner && m_inner->canReadLine());
}

bool QXNetworkReply::waitForReadyRead(int milliseconds)
{
    return m_inner && m_inner->waitForReadyRead(milliseconds);
}

qint64 QXNetworkReply::readData(char *data, qint64 maxSize)
{
    return m_body.read(m_inner, data, maxSize);
}

// What the inner reply tells

bool QXNetworkReply::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_inner || event->type() != QEvent::DeferredDelete)
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
    return readBufferSize() > 0 || m_isCompressed ||
           m_inner->attribute(QNetworkRequest::SourceIsFromCacheAttribute).toBool();
}

void QXNetworkReply::drain()
{
    if (m_inner)
        m_body.drain(*m_inner);
}

void QXNetworkReply::innerRedirected(const QUrl &url)
{
    mirrorAddress();
    mirrorResponse();
    if (!m_isTlsConnected && url.scheme() == QLatin1StringView("https"))
        connectTls();
    if (!std::exchange(m_isRedirected, true))
        connect(this, &QNetworkReply::redirectAllowed, m_inner, &QNetworkReply::redirectAllowed);
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
    if (!m_isOfQt) {
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
    if (!m_hasResponse || !m_isOfQt)
        mirrorResponse();
    complete();
    // A reply of the host can say so after it has emitted the signal.
    if (!m_isOfQt && !isFinished()) {
        const auto mirrorLater = [this] {
            if (m_inner)
                mirrorState();
        };
        QMetaObject::invokeMethod(this, mirrorLater, Qt::QueuedConnection);
    }
    Q_EMIT finished();
}

// The report

std::optional<NSError> QXNetworkReply::transportError() const
{
    if (!m_inner)
        return makeURLError(NSURLErrorCancelled);
    if (!m_inner->isFinished() && m_isCancelled)
        return makeURLError(NSURLErrorCancelled);
    const auto code = ReplyOutcome::transportError(*m_inner, m_isCancelled);
    return code ? std::optional(makeURLError(*code)) : std::nullopt;
}

void QXNetworkReply::complete(const DataTaskCompletionHandler &deliver)
{
    if (std::exchange(m_isComplete, true))
        return;
    m_body.squeeze();
    if (m_source.tee && m_inner) {
        m_source.body = m_source.tee->takeCopy();
        m_source.body->squeeze();
        m_exchange.amend(ReplyOutcome::request(*m_inner, m_source.method, m_source.body));
    }
    const NSURLResponsePtr response = m_inner ? ReplyOutcome::response(*m_inner) : nullptr;
    if (deliver)
        m_exchange.complete(response, m_body.bytes(), transportError(), deliver);
    else
        m_exchange.complete(response, m_body.bytes(), transportError());
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
    if (m_isComplete || !m_inner)
        return;
    QByteArray soFar = m_body.bytes();
    // What Qt has decompressed it would also have saved in its cache.
    if (!m_isCompressed && m_inner->isOpen())
        soFar += m_inner->peek(m_inner->bytesAvailable());
    m_exchange.progress(ReplyOutcome::response(*m_inner), soFar);
}

void QXNetworkReply::setBody(const QByteArray &body)
{
    m_body.replace(body);
}
