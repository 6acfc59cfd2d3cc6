#pragma once

#include "Platform/NSURLSessionConfiguration.h"
#include "Platform/URLLoadManager.h"

#include <QtCore/QPointer>
#include <QtNetwork/QNetworkRequest>

#include <atomic>
#include <optional>

namespace Quorvix {

/// The part of a session that its tasks share. They use it in the loading thread.
struct URLLoadSession
{
    explicit URLLoadSession(NSURLSessionConfiguration sessionConfiguration);
    ~URLLoadSession();
    Q_DISABLE_COPY_MOVE(URLLoadSession)

    /// The network access manager. It is created on first use and is deleted with the loading thread at the
    /// latest. In the loading thread only.
    [[nodiscard]] URLLoadManager *manager();

    const NSURLSessionConfiguration configuration;
    /// What the configuration says until somebody changes it. Any thread.
    std::atomic<bool> completesOnMainThread;
    /// What all requests without headers and without a body have in common. In the loading thread only.
    std::optional<QNetworkRequest> plainRequest;

private:
    QPointer<URLLoadManager> m_manager;
    /// The parent of the manager. It differs from that of the current thread when the manager belongs to the
    /// thread of an earlier application.
    const QObject *m_parent = nullptr;
};

} // namespace Quorvix
