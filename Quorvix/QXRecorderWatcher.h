#pragma once

#include "Platform/NSNotificationCenter.h"
#include "Platform/PlatformGlobal.h"

#include <QtCore/QObject>

/// Tells the changes of the recorder by a signal: the notification QuorvixRequestsChanged for connect(). It
/// is created, used and destroyed on the main thread.
///
/// @code
/// QXRecorderWatcher watcher;
/// QObject::connect(&watcher, &QXRecorderWatcher::requestsChanged, &label, [&label] {
///     label.setText(QString::number(QXRequestRecorder::shared().requests().size()));
/// });
/// @endcode
class QUORVIX_CORE_EXPORT QXRecorderWatcher final : public QObject
{
    Q_OBJECT

public:
    /// Watches until it is destroyed. Main thread.
    explicit QXRecorderWatcher(QObject *parent = nullptr);
    ~QXRecorderWatcher() override;

Q_SIGNALS:
    /// Emitted on the main thread after every change of QXRequestRecorder::requests(), before the call that
    /// has caused it returns. A busy program changes them many times in one turn of the event loop: a slot
    /// that takes long does its work later, once for all changes.
    void requestsChanged();

private:
    Quorvix::NSNotificationObserver m_observer;
};
