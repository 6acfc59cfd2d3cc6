#pragma once

#include "NSURLResponse.h"

#include <QtCore/QString>

#include <map>
#include <variant>

namespace Quorvix {

/// A header's name or value as the loading system reports it. Normally text; a protocol handler may also
/// store a number.
using NSHeaderValue = std::variant<QString, qint64, double>;
/// Header names and values of a response. Names that differ in case are different keys.
using NSHeaderFields = std::map<NSHeaderValue, NSHeaderValue>;

/// The text form of a header's name or value. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT QString description(const NSHeaderValue &value);

/// An HTTP response: status and headers. Immutable; shared between threads.
class QUORVIX_CORE_EXPORT NSHTTPURLResponse final : public NSURLResponse
{
public:
    /// Null when the URL is invalid.
    [[nodiscard]] static std::shared_ptr<const NSHTTPURLResponse>
    create(const QUrl &url, qint64 statusCode, const QString &httpVersion, NSHeaderFields headerFields);

    /// A response with these values; create() checks the URL first.
    NSHTTPURLResponse(std::optional<QUrl> url, qint64 statusCode, QString httpVersion,
                      NSHeaderFields headerFields);
    ~NSHTTPURLResponse() override;

    /// The status code, as in the first line of the response.
    [[nodiscard]] qint64 statusCode() const noexcept { return m_statusCode; }
    /// The version of HTTP as the source tells it, for example "HTTP/1.1"; may be empty.
    [[nodiscard]] const QString &httpVersion() const noexcept { return m_httpVersion; }
    /// The headers.
    [[nodiscard]] const NSHeaderFields &allHeaderFields() const noexcept { return m_headerFields; }

    /// The reason phrase for a status code, translated in the host's catalogue (context "Quorvix"):
    /// a phrase in lower case for each registered code (RFC 9110, 15), else the name of the class of codes.
    [[nodiscard]] static QString localizedStringForStatusCode(qint64 statusCode);

private:
    qint64 m_statusCode;
    QString m_httpVersion;
    NSHeaderFields m_headerFields;
};

/// An optional HTTP response: null when there is none.
using NSHTTPURLResponsePtr = std::shared_ptr<const NSHTTPURLResponse>;

} // namespace Quorvix
