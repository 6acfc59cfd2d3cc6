#include "Quorvix/QXQmlClient.h"

#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include <utility>

using namespace Quorvix;

QXQmlClient::QXQmlClient(QObject *parent)
    : QObject(parent), m_reportedCount(requestCount()),
      m_observer(NSNotificationCenter::defaultCenter().addObserver(QuorvixRequestsChanged,
                                                                   [this] { handleRequestsChanged(); }))
{
}

QXQmlClient::~QXQmlClient() = default;

void QXQmlClient::start()
{
    QuorvixClient::shared().start();
}

void QXQmlClient::show()
{
    QuorvixClient::shared().show();
}

void QXQmlClient::hide()
{
    QuorvixClient::shared().hide();
}

void QXQmlClient::clear()
{
    QXRequestRecorder::shared().clear();
}

int QXQmlClient::requestCount() const
{
    return int(QXRequestRecorder::shared().requests().size());
}

QXQmlClient::LogLevel QXQmlClient::logLevel() const
{
    return static_cast<LogLevel>(QuorvixClient::shared().logLevel());
}

void QXQmlClient::setLogLevel(LogLevel level)
{
    const auto rawLevel = makeQXLogLevel(level);
    if (!rawLevel || level == logLevel())
        return;
    QuorvixClient::shared().setLogLevel(*rawLevel);
    Q_EMIT logLevelChanged();
}

QXQmlClient::Presentation QXQmlClient::presentation() const
{
    return QuorvixClient::shared().presentation() == QXPresentation::window ? Window : Panel;
}

void QXQmlClient::setPresentation(Presentation presentation)
{
    if (presentation == this->presentation())
        return;
    QuorvixClient::shared().setPresentation(presentation == Window ? QXPresentation::window
                                                                   : QXPresentation::panel);
    Q_EMIT presentationChanged();
}

void QXQmlClient::handleRequestsChanged()
{
    if (std::exchange(m_reportScheduled, true))
        return;
    QMetaObject::invokeMethod(this, &QXQmlClient::reportRequestCount, Qt::QueuedConnection);
}

void QXQmlClient::reportRequestCount()
{
    m_reportScheduled = false;
    const int count = requestCount();
    if (std::exchange(m_reportedCount, count) != count)
        Q_EMIT requestCountChanged();
}
