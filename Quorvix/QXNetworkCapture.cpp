#include "Quorvix/QXNetworkCapture.h"

#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXExitArchive.h"
#include "Quorvix/QXHeldNetworkReply.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXSessionHook.h"
#include "Quorvix/QXUploadTee.h"

#include <QtCore/QBuffer>
#include <QtCore/QCoreApplication>
#include <QtNetwork/QAuthenticator>

#include <atomic>
#include <mutex>

namespace {

constexpr char attachedProperty[] = "_quorvix_attached";

std::atomic<bool> includesLocalUrls = false;

QString methodOf(QNetworkAccessManager::Operation operation, const QNetworkRequest &request)
{
    switch (operation) {
    case QNetworkAccessManager::HeadOperation:
        return QStringLiteral("HEAD");
    case QNetworkAccessManager::PutOperation:
        return QStringLiteral("PUT");
    case QNetworkAccessManager::PostOperation:
        return QStringLiteral("POST");
    case QNetworkAccessManager::DeleteOperation:
        return QStringLiteral("DELETE");
    case QNetworkAccessManager::CustomOperation:
        return QString::fromUtf8(request.attribute(QNetworkRequest::CustomVerbAttribute).toByteArray());
    case QNetworkAccessManager::GetOperation:
    case QNetworkAccessManager::UnknownOperation:
        break;
    }
    return QStringLiteral("GET");
}

bool isSynchronous(const QNetworkRequest &request)
{
    return request.attribute(QNetworkRequest::SynchronousRequestAttribute).toBool();
}

/// In a static library this brings in the hook of the sessions, which otherwise only those programs have that
/// install it.
void followApplication()
{
    if (QXExitArchive::begin())
        QXSessionHook::install();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

QXNetworkCapture::QXNetworkCapture(QNetworkAccessManager *manager, Operation operation,
                                   const QNetworkRequest &request, QIODevice *body)
    : m_manager(manager), m_upload(body), m_method(methodOf(operation, request)),
      m_isHeld(QXBreakpointStore::matches(request.url(), m_method) && !isSynchronous(request))
{
    // The bytes of a buffer can be shared, and Qt reads them fastest.
    if (const auto *const buffer = qobject_cast<QBuffer *>(body))
        m_body = buffer->data().mid(buffer->pos());
    else if (body && body->isReadable())
        m_tee = std::make_unique<QXUploadTee>(body);
    attach(manager);
}

QXNetworkCapture::~QXNetworkCapture() = default;

bool QXNetworkCapture::isCaptured(const QUrl &url)
{
    const QString scheme = url.scheme();
    if (scheme == QLatin1StringView("http") || scheme == QLatin1StringView("https"))
        return true;
    // Qt opens connections in advance with schemes that begin in this way.
    return includesLocalUrls && !scheme.startsWith(QLatin1StringView("preconnect-"));
}

void QXNetworkCapture::setIncludesLocalUrls(bool includes)
{
    includesLocalUrls = includes;
}

void QXNetworkCapture::attach(QNetworkAccessManager *manager)
{
    if (isAttached(manager))
        return;
    static std::once_flag once;
    std::call_once(once, [] { QXRequestRecorder::shared().addSource(&QXNetworkReply::refresh); });
    manager->setProperty(attachedProperty, true);
    // Qt passes one copy of the arguments to all slots in turn. So the first slot can replace the reply.
    QObject::connect(manager, &QNetworkAccessManager::authenticationRequired, manager,
                     [](QNetworkReply *const &reply, QAuthenticator *) {
                         if (QXNetworkReply *const outer = QXNetworkReply::outerOf(reply))
                             const_cast<QNetworkReply *&>(reply) = outer;
                     });
}

bool QXNetworkCapture::isAttached(const QNetworkAccessManager *manager)
{
    return manager->property(attachedProperty).toBool();
}

QIODevice *QXNetworkCapture::upload() const
{
    return m_tee ? m_tee.get() : m_upload;
}

QNetworkReply *QXNetworkCapture::wrap(QNetworkReply *inner)
{
    if (!inner)
        return nullptr;
    // The manager below has captured the request already, and uploads from this device.
    if (qobject_cast<QXNetworkReply *>(inner)) {
        if (m_tee)
            m_tee.release()->setParent(inner);
        return inner;
    }
    QXNetworkReply::Source source{m_method, std::move(m_body), std::move(m_tee)};
    if (m_isHeld)
        return new QXHeldNetworkReply(inner, std::move(source), m_manager);
    return new QXNetworkReply(inner, std::move(source), m_manager);
}
