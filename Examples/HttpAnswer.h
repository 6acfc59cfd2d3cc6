#pragma once

#include <httplib.h>

#include <QtCore/QByteArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QString>

/// What the routes of the demo server write into a response.
namespace HttpAnswer {

/// A JSON body. It goes as it is: the server compresses on its own only what declares no character set.
void json(httplib::Response &response, const QJsonDocument &document, int status = 200);
/// A problem report (RFC 9457).
void problem(httplib::Response &response, int status, const QString &title, const QString &detail);
/// Bytes of any media type.
void bytes(httplib::Response &response, const QByteArray &body, const char *mediaType);

/// A query's or a form's parameter; empty when the request does not have it.
[[nodiscard]] QString parameter(const httplib::Request &request, const char *name);
/// The same as a number not below zero; @p fallback when it is absent or no number.
[[nodiscard]] int number(const httplib::Request &request, const char *name, int fallback);

} // namespace HttpAnswer
