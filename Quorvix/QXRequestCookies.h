#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtNetwork/QNetworkCookie>

struct QXRequestTrace;

/// The cookies that the shared storage has now for the URL of an exchange; none without a URL. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QList<QNetworkCookie> sharedCookies(const QXRequestTrace &request);
