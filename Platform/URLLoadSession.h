#pragma once

#include "Platform/NSURLSessionConfiguration.h"

#include <QtCore/QPointer>
#include <QtNetwork/QNetworkAccessManager>

namespace Quorvix {

/// A session's part of the loading thread.
struct URLLoadSession
{
    explicit URLLoadSession(NSURLSessionConfiguration sessionConfiguration);
    ~URLLoadSession();
    Q_DISABLE_COPY_MOVE(URLLoadSession)

    /// Made on first use, in the loading thread, and gone with it at the latest.
    [[nodiscard]] QNetworkAccessManager *manager();

    const NSURLSessionConfiguration configuration;

private:
    QPointer<QNetworkAccessManager> m_manager;
};

} // namespace Quorvix
