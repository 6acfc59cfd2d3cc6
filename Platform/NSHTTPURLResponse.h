#pragma once

#include "NSHeaderFields.h"
#include "NSURLResponse.h"
#include "StoredHeaderFields.h"

#include <QtCore/QString>

namespace Quorvix {

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

    /// The headers in the form in which a trace keeps them; absent when a name or value is not text.
    [[nodiscard]] const std::optional<StoredHeaderFields> &storedHeaderFields() const noexcept
    {
        return m_storedHeaderFields;
    }

    /// The reason phrase for a status code, translated in the host's catalogue (context "Quorvix"):
    /// a phrase in lower case for each registered code (RFC 9110, 15), else the name of the class of codes.
    [[nodiscard]] static QString localizedStringForStatusCode(qint64 statusCode);

private:
    qint64 m_statusCode;
    QString m_httpVersion;
    NSHeaderFields m_headerFields;
    /// Made with the response, which seldom happens on the main thread.
    std::optional<StoredHeaderFields> m_storedHeaderFields;
};

/// An optional HTTP response: null when there is none.
using NSHTTPURLResponsePtr = std::shared_ptr<const NSHTTPURLResponse>;

} // namespace Quorvix
