#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/// The JSON Web Tokens (RFC 7519) of the store's server, signed with HMAC SHA-256 (RFC 7515).
namespace SessionToken {

/// Signs with this key from now on, instead of a random one. Not while the server runs.
void useKey(const QByteArray &key);
/// A token for @p email that is valid for one hour.
[[nodiscard]] QByteArray sign(const QString &email);
/// The email address in a token; absent when its signature is wrong or it has expired.
[[nodiscard]] std::optional<QString> verify(const QByteArray &token);

} // namespace SessionToken
