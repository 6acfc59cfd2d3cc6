#pragma once

#include "Platform/NSURLSessionConfiguration.h"

#include <QtCore/QPointer>
#include <QtNetwork/QNetworkAccessManager>

#include <atomic>

namespace Quorvix {

/// The part of a session that its tasks share. They use it in the loading thread.
struct URLLoadSession
{
    explicit URLLoadSession(NSURLSessionConfiguration sessionConfiguration);
    ~URLLoadSession();
    Q_DISABLE_COPY_MOVE(URLLoadSession)

    /// The network access manager. It is created on first use and is deleted with the loading thread at the
    /// latest. In the loading thread only.
    [[nodiscard]] QNetworkAccessManager *manager();

    const NSURLSessionConfiguration configuration;
    /// What the configuration says until somebody changes it. Any thread.
    std::atomic<bool> completesOnMainThread;

private:
    QPointer<QNetworkAccessManager> m_manager;
    /// The parent of the manager. It differs from that of the current thread when the manager belongs to the
    /// thread of an earlier application.
    const QObject *m_parent = nullptr;
};

} // namespace Quorvix
