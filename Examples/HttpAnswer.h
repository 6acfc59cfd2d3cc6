#pragma once

#include <httplib.h>

#include <QtCore/QByteArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QString>

/// Helpers of the demo server's routes for reading a request and writing a response.
namespace HttpAnswer {

/// Sends a JSON body without compression. The body declares a character set, because the server would
/// compress it otherwise.
void json(httplib::Response &response, const QJsonDocument &document, int status = 200);
/// Sends a problem report (RFC 9457).
void problem(httplib::Response &response, int status, const QString &title, const QString &detail);
/// Sends bytes of any media type.
void bytes(httplib::Response &response, const QByteArray &body, const char *mediaType);

/// A parameter of the query or the form; empty when the request does not have it.
[[nodiscard]] QString parameter(const httplib::Request &request, const char *name);
/// A parameter as a number of 0 or more; @p fallback when it is absent or not a number.
[[nodiscard]] int number(const httplib::Request &request, const char *name, int fallback);

} // namespace HttpAnswer
