#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/// JSON Web Tokens (RFC 7519) signed with HMAC SHA-256 (RFC 7515), as the store's server hands them out.
namespace SessionToken {

/// A token for @p email that holds for an hour.
[[nodiscard]] QByteArray sign(const QString &email);
/// Whom a token was made out to; absent when its signature is wrong or its time is over.
[[nodiscard]] std::optional<QString> verify(const QByteArray &token);

} // namespace SessionToken
