#pragma once

#include "Platform/NSError.h"
#include "Platform/NSURLResponse.h"
#include "Platform/URLRequest.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <optional>

class QNetworkReply;
class QSslError;

namespace Quorvix {

/// What a reply of Qt says, in the words of this platform. In the reply's thread only.
namespace ReplyOutcome {

/// The name of a header as people spell it.
[[nodiscard]] QString fieldName(const QByteArray &bytes);
/// The value of a header: UTF-8, or Latin-1 if it is not UTF-8.
[[nodiscard]] QString fieldText(const QByteArray &bytes);

/// What the reply has asked for, with the headers that Qt has added so far.
[[nodiscard]] URLRequest request(const QNetworkReply &reply, const QString &method,
                                 const std::optional<QByteArray> &body);

/// Whether Content-Length is still true of the body.
enum class BodyLength { AsSent, Changed };

/// The response that has arrived so far. Null if there is none. Content-Length is left out when the caller
/// has changed the length by decoding the body, as Qt does when it decodes.
[[nodiscard]] NSURLResponsePtr response(const QNetworkReply &reply, BodyLength length = BodyLength::AsSent);

/// Remembers for transportError() why a certificate was refused. Called when the reply emits sslErrors().
void noteCertificateErrors(QNetworkReply &reply, const QList<QSslError> &errors);

/// The error that ended the transport. An HTTP status code is not an error: it arrives as a response.
/// @p isCancelled tells whether the application ended the reply; Qt reports a time-out in the same way.
/// A client certificate that the server refuses or misses is told where Qt uses OpenSSL and the server says
/// so by a TLS alert of its own: the general alert for a failed handshake, which servers below TLS 1.3 send
/// when they miss a certificate, is NSURLErrorSecureConnectionFailed.
[[nodiscard]] std::optional<NSURLErrorCode> transportError(const QNetworkReply &reply, bool isCancelled);

/// Whether the body is shorter than its Content-Length, although Qt may report no error: the connection was
/// lost.
/// @p receivedBytes counts the body as it came over the wire, before content codings are decoded. False when
/// nothing can tell: for a response without that header, such as a chunked one, for one whose header Qt has
/// removed because it decodes the body itself, and for one that has no body in answer to @p method.
[[nodiscard]] bool isCutShort(const QNetworkReply &reply, qint64 receivedBytes, const QString &method);

} // namespace ReplyOutcome

} // namespace Quorvix
