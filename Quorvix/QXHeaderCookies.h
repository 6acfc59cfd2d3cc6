#pragma once

#include "Platform/StoredHeaderFields.h"

#include <QtCore/QList>

/// A cookie in a header.
struct QXHeaderCookie
{
    QString name;
    QString value;
};

/// The cookies that a request sends, from its header with exactly the name "Cookie". Pieces that are not
/// "name=value" are left out. Any thread.
[[nodiscard]] QList<QXHeaderCookie> requestCookies(const std::optional<Quorvix::StoredHeaderFields> &headers);

/// The cookies that a response sets, without their attributes, from its header with exactly the name
/// "Set-Cookie", in which each line is a cookie. Any thread.
[[nodiscard]] QList<QXHeaderCookie>
responseCookies(const std::optional<Quorvix::StoredHeaderFields> &headers);
