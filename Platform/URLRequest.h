#pragma once

#include "HTTPHeaderFields.h"
#include "PlatformGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QUrl>

#include <chrono>
#include <optional>

namespace Quorvix {

/// What to load and how. A plain value; threads may copy it freely.
class QUORVIX_CORE_EXPORT URLRequest
{
public:
    URLRequest() = default;
    /// A GET of @p url.
    explicit URLRequest(const QUrl &url);

    /// Where the request goes. Absent for a request without a destination, which fails.
    std::optional<QUrl> url;
    /// The method exactly as it is sent; see sentMethod() for a request without one.
    std::optional<QString> httpMethod = QStringLiteral("GET");
    /// Absent when no header was set.
    std::optional<HTTPHeaderFields> allHTTPHeaderFields;
    /// Absent for a request without a body. Copies of the request share the bytes.
    std::optional<QByteArray> httpBody;
    /// How long the connection may stay silent. When absent, the limit of the session applies.
    std::optional<std::chrono::milliseconds> timeoutInterval;

    /// The value of the header with this name in any case.
    [[nodiscard]] std::optional<QString> value(const QString &field) const;
    /// Sets a header and replaces the first one with this name in any case.
    void setValue(const QString &value, const QString &field);
    /// Appends a value to a header, after a comma (RFC 9110, 5.3).
    void addValue(const QString &value, const QString &field);
};

/// The method that a request is sent with: GET for a request without one. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT QString sentMethod(const std::optional<QString> &httpMethod);

} // namespace Quorvix
