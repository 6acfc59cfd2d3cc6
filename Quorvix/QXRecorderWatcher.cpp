#include "Quorvix/QXRecorderWatcher.h"

#include "Quorvix/QuorvixNotifications.h"

QXRecorderWatcher::QXRecorderWatcher(QObject *parent)
    : QObject(parent), m_observer(Quorvix::NSNotificationCenter::defaultCenter().addObserver(
                           QuorvixRequestsChanged, [this] { Q_EMIT requestsChanged(); }))
{
}

QXRecorderWatcher::~QXRecorderWatcher() = default;
