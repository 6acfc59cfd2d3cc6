#include "Quorvix/QuorvixClient.h"

#include "Quorvix/QXLog.h"
#include "Quorvix/QXNetworkAccessManagerFactory.h"
#include "Quorvix/QXOverlay.h"
#include "Quorvix/QXSessionHook.h"

#include "Platform/ApplicationEnd.h"
#include "Platform/MainActor.h"

#include <QtGui/QGuiApplication>

using namespace Quorvix;

void QuorvixClient::DeleteLater::operator()(QXOverlay *overlay) const
{
    overlay->shutDown();
    // Deleted later, because hide() may be called by a handler that the overlay itself has called.
    overlay->deleteLater();
}

QuorvixClient::QuorvixClient()
{
    QXLog::setLevel(QXLogLevel::none);
    QXSessionHook::install();
}

QuorvixClient::~QuorvixClient() = default;

QuorvixClient &QuorvixClient::shared()
{
    static auto *const client = new QuorvixClient;
    return *client;
}

void QuorvixClient::start()
{
    show();
}

void QuorvixClient::start(QQmlEngine &engine)
{
    QXNetworkAccessManagerFactory::install(engine);
    show();
}

void QuorvixClient::show()
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        QXLog::log(QXLogLevel::error, QStringLiteral("[Overlay] there is no QGuiApplication to show it in"));
        return;
    }
    Q_ASSERT(MainActor::isCurrent());
    if (!m_overlayWindow) {
        m_overlayWindow.reset(new QXOverlay(m_presentation));
        // Windows cannot outlive the application that shows them.
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, m_overlayWindow.get(), [this] { hide(); });
        qRemovePostRoutine(&QuorvixClient::stopDrawing);
        ApplicationEnd::call(&QuorvixClient::stopDrawing);
        qRemovePostRoutine(&QuorvixClient::applicationEnds);
        qAddPostRoutine(&QuorvixClient::applicationEnds);
    }
    m_overlayWindow->setHidden(false);
}

void QuorvixClient::hide()
{
    if (!m_overlayWindow)
        return;
    m_overlayWindow->setHidden(true);
    m_overlayWindow.reset();
}

void QuorvixClient::applicationEnds()
{
    shared().hide();
    // No event loop runs after this, so deferred deletions must be processed now.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Also called by exit(), while a thread may draw our windows, which would then use Qt's destroyed static
/// objects. Deletes nothing, because the host may call exit() in a handler that a screen has called.
void QuorvixClient::stopDrawing()
{
    if (QXOverlay *const overlay = shared().overlayWindow())
        overlay->setHidden(true);
}

QXPresentation QuorvixClient::presentation() const
{
    return m_presentation;
}

void QuorvixClient::setPresentation(QXPresentation presentation)
{
    m_presentation = presentation;
    if (m_overlayWindow)
        m_overlayWindow->setPresentation(presentation);
}

QXLogLevel QuorvixClient::logLevel() const
{
    return QXLog::level();
}

void QuorvixClient::setLogLevel(QXLogLevel level)
{
    QXLog::setLevel(level);
}

QXOverlay *QuorvixClient::overlayWindow() const
{
    return m_overlayWindow.get();
}
