#pragma once

#include "HTTPHeaderFields.h"
#include "PlatformGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QUrl>

#include <chrono>
#include <optional>

namespace Quorvix {

/// What to load and how: a plain value, copied freely between threads.
class QUORVIX_CORE_EXPORT URLRequest
{
public:
    URLRequest() = default;
    /// A GET of @p url.
    explicit URLRequest(const QUrl &url);

    std::optional<QUrl> url;
    /// The method as it goes on the wire; see sentMethod() for a request without one.
    std::optional<QString> httpMethod = QStringLiteral("GET");
    /// Absent when no header was set.
    std::optional<HTTPHeaderFields> allHTTPHeaderFields;
    /// Absent for a request without a body. Shared, never copied.
    std::optional<QByteArray> httpBody;
    /// How long the connection may stay silent. Absent: the session's own limit holds.
    std::optional<std::chrono::milliseconds> timeoutInterval;

    /// The value of a header whose name has any spelling.
    [[nodiscard]] std::optional<QString> value(const QString &field) const;
    /// Replaces whatever header has this name in any spelling.
    void setValue(const QString &value, const QString &field);
    /// Adds to a header, as a list separated by commas (RFC 9110, 5.3).
    void addValue(const QString &value, const QString &field);
};

/// The method that a request is sent by: GET for a request without one. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT QString sentMethod(const std::optional<QString> &httpMethod);

} // namespace Quorvix
