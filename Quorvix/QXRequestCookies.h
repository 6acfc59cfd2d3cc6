#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtNetwork/QNetworkCookie>

struct QXRequestTrace;

/// Returns the cookies that the shared storage currently has for the URL of an exchange; empty without a
/// URL. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QList<QNetworkCookie> sharedCookies(const QXRequestTrace &request);
