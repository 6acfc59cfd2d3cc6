#include "Platform/HTTPRedirect.h"

#include <algorithm>

namespace Quorvix {

namespace {

bool isRedirect(int statusCode)
{
    return statusCode == 301 || statusCode == 302 || statusCode == 303 || statusCode == 307 ||
           statusCode == 308;
}

bool becomesGet(const QString &method, int statusCode)
{
    if (statusCode == 303)
        return method != QLatin1StringView("HEAD");
    return (statusCode == 301 || statusCode == 302) && method == QLatin1StringView("POST");
}

bool sameOrigin(const QUrl &left, const QUrl &right)
{
    const auto port = [](const QUrl &url) {
        return url.port(url.scheme() == QLatin1StringView("https") ? 443 : 80);
    };
    return left.scheme() == right.scheme() && left.host() == right.host() && port(left) == port(right);
}

void removeHeaders(URLRequest &request, std::initializer_list<QLatin1StringView> names)
{
    if (!request.allHTTPHeaderFields)
        return;
    request.allHTTPHeaderFields->removeIf([&](const std::pair<const QString &, QString &> &header) {
        return std::any_of(names.begin(), names.end(),
                           [&](QLatin1StringView name) { return isSameHeaderName(header.first, name); });
    });
}

} // namespace

std::optional<URLRequest> HTTPRedirect::follow(const URLRequest &request, int statusCode,
                                               const QByteArray &location)
{
    if (!isRedirect(statusCode) || location.isEmpty())
        return std::nullopt;
    URLRequest next = request;
    next.url = request.url->resolved(QUrl::fromEncoded(location));
    if (!next.url->hasFragment())
        next.url->setFragment(request.url->fragment(QUrl::FullyEncoded));
    if (becomesGet(sentMethod(request.httpMethod), statusCode)) {
        next.httpMethod = QStringLiteral("GET");
        next.httpBody.reset();
        removeHeaders(next, {QLatin1StringView("Content-Type"), QLatin1StringView("Content-Length"),
                             QLatin1StringView("Content-Encoding")});
    }
    if (!sameOrigin(*request.url, *next.url))
        removeHeaders(next, {QLatin1StringView("Authorization"), QLatin1StringView("Cookie")});
    return next;
}

std::optional<NSURLErrorCode> HTTPRedirect::problem(const URLRequest &redirected, int count)
{
    if (count > maximum)
        return NSURLErrorHTTPTooManyRedirects;
    const QString scheme = redirected.url->scheme();
    if (scheme != QLatin1StringView("http") && scheme != QLatin1StringView("https"))
        return NSURLErrorUnsupportedURL;
    return redirected.url->isValid() ? std::nullopt : std::optional(NSURLErrorBadURL);
}

} // namespace Quorvix
