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

/// The response that has arrived so far. Null if there is none.
[[nodiscard]] NSURLResponsePtr response(const QNetworkReply &reply);

/// Remembers for transportError() why a certificate was refused. Called when the reply emits sslErrors().
void noteCertificateErrors(QNetworkReply &reply, const QList<QSslError> &errors);

/// The error that ended the transport. An HTTP status code is not an error: it arrives as a response.
/// @p isCancelled tells whether the application ended the reply; Qt reports a time-out in the same way.
[[nodiscard]] std::optional<NSURLErrorCode> transportError(const QNetworkReply &reply, bool isCancelled);

} // namespace ReplyOutcome

} // namespace Quorvix
