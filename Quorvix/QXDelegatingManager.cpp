#include "Quorvix/QXDelegatingManager.h"

#include "Quorvix/QXNetworkCapture.h"
#include "Quorvix/QXNetworkReply.h"

#include <QtNetwork/QAuthenticator>
#include <QtNetwork/QNetworkCookieJar>
#include <QtNetwork/QNetworkProxy>

namespace {

/// Makes the request through the public functions of @p host, because createRequest() is not one of them.
QNetworkReply *send(QNetworkAccessManager &host, QNetworkAccessManager::Operation operation,
                    const QNetworkRequest &request, QIODevice *body)
{
    switch (operation) {
    case QNetworkAccessManager::HeadOperation:
        return host.head(request);
    case QNetworkAccessManager::PutOperation:
        return host.put(request, body);
    case QNetworkAccessManager::PostOperation:
        return host.post(request, body);
    case QNetworkAccessManager::DeleteOperation:
        return host.deleteResource(request);
    case QNetworkAccessManager::CustomOperation:
        return host.sendCustomRequest(
            request, request.attribute(QNetworkRequest::CustomVerbAttribute).toByteArray(), body);
    case QNetworkAccessManager::GetOperation:
    case QNetworkAccessManager::UnknownOperation:
        break;
    }
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    if (body)
        return host.get(request, body);
#endif
    return host.get(request);
}

} // namespace

QXDelegatingManager::QXDelegatingManager(QNetworkAccessManager *host, QObject *parent)
    : QNetworkAccessManager(parent), m_host(host)
{
    // A factory can keep its manager and hand it out again and again.
    if (!parent || host->parent() == parent)
        host->setParent(this);
    if (QNetworkCookieJar *const jar = host->cookieJar()) {
        QObject *const owner = jar->parent();
        setCookieJar(jar);
        jar->setParent(owner);
    }
    connect(host, &QNetworkAccessManager::authenticationRequired, this,
            [this](QNetworkReply *reply, QAuthenticator *authenticator) {
                QXNetworkReply *const outer = QXNetworkReply::outerOf(reply);
                Q_EMIT authenticationRequired(outer ? outer : reply, authenticator);
            });
    connect(host, &QNetworkAccessManager::proxyAuthenticationRequired, this,
            &QNetworkAccessManager::proxyAuthenticationRequired);
}

QXDelegatingManager::~QXDelegatingManager() = default;

QNetworkReply *QXDelegatingManager::createRequest(Operation operation, const QNetworkRequest &request,
                                                  QIODevice *body)
{
    return QXNetworkCapture::capture(this, operation, request, body, [&](QIODevice *upload) {
        return m_host ? send(*m_host, operation, request, upload)
                      : QNetworkAccessManager::createRequest(operation, request, upload);
    });
}
