#include "Quorvix/QXMirrorReply.h"

#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QSslError>

#include <algorithm>
#include <array>

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

QXMirrorReply::QXMirrorReply(QNetworkReply *inner, QObject *parent)
    : QNetworkReply(parent), m_inner(inner), m_isOfQt(inner->inherits("QNetworkReplyHttpImpl"))
{
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
}

QXMirrorReply::~QXMirrorReply() = default;

void QXMirrorReply::mirrorState()
{
    if (m_inner->error() != error())
        setError(m_inner->error(), m_inner->errorString());
    if (m_inner->isFinished())
        setFinished(true);
}

void QXMirrorReply::mirrorAddress()
{
    setUrl(m_inner->url());
    setOperation(m_inner->operation());
}

void QXMirrorReply::mirrorResponse()
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
void QXMirrorReply::mirrorOpening()
{
    if (!m_isOfQt && !isOpen() && !m_isCancelled)
        setOpenMode(m_inner->openMode());
}

void QXMirrorReply::mirrorHeaders(const QNetworkReply &from)
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

void QXMirrorReply::ignoreSslErrors()
{
    if (m_inner)
        m_inner->ignoreSslErrors();
}

void QXMirrorReply::ignoreSslErrorsImplementation(const QList<QSslError> &errors)
{
    if (m_inner)
        m_inner->ignoreSslErrors(errors);
}

void QXMirrorReply::sslConfigurationImplementation(QSslConfiguration &configuration) const
{
    if (m_inner)
        configuration = m_inner->sslConfiguration();
}

void QXMirrorReply::setSslConfigurationImplementation(const QSslConfiguration &configuration)
{
    if (m_inner)
        m_inner->setSslConfiguration(configuration);
}

bool QXMirrorReply::isSequential() const
{
    return !m_inner || m_inner->isSequential();
}

bool QXMirrorReply::waitForReadyRead(int milliseconds)
{
    return m_inner && m_inner->waitForReadyRead(milliseconds);
}
