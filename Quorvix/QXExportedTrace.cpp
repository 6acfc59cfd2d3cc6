#include "Quorvix/QXExportedTrace.h"

#include "Quorvix/QXRedaction.h"
#include "Quorvix/QXRequestCookies.h"

using namespace Quorvix;

namespace {

using Headers = std::optional<StoredHeaderFields>;

constexpr QStringView cookieHeader = u"Cookie";
constexpr QStringView setCookieHeader = u"Set-Cookie";

bool isConcerned(const Headers &headers)
{
    bool is = false;
    if (headers)
        headers->forEach(
            [&](const QString &name, const QString &) { is = is || QXRedaction::concerns(name); });
    return is;
}

void redact(Headers &headers)
{
    if (!headers)
        return;
    HTTPHeaderFields redacted;
    headers->forEach([&](const QString &name, const QString &value) {
        redacted.insert(redacted.cend(), name,
                        QXRedaction::concerns(name) ? QXRedaction::marker.toString() : value);
    });
    headers = redacted;
}

QList<QXHeaderCookie> redacted(QList<QXHeaderCookie> cookies, QStringView header)
{
    if (QXRedaction::concerns(header)) {
        for (QXHeaderCookie &cookie : cookies)
            cookie.value = QXRedaction::marker.toString();
    }
    return cookies;
}

} // namespace

QXExportedTrace::QXExportedTrace(const QXRequestTrace &trace) : m_original(trace)
{
    if (!isConcerned(trace.headers) && !(trace.response && isConcerned(trace.response->headers)))
        return;
    m_redacted = trace;
    redact(m_redacted->headers);
    if (m_redacted->response)
        redact(m_redacted->response->headers);
}

QList<QXHeaderCookie> QXExportedTrace::requestCookies() const
{
    return redacted(::requestCookies(m_original.headers), cookieHeader);
}

QList<QXHeaderCookie> QXExportedTrace::responseCookies() const
{
    return m_original.response ? redacted(::responseCookies(m_original.response->headers), setCookieHeader)
                               : QList<QXHeaderCookie>();
}

QList<QNetworkCookie> QXExportedTrace::storedCookies() const
{
    QList<QNetworkCookie> cookies = sharedCookies(m_original);
    if (QXRedaction::concerns(cookieHeader) || QXRedaction::concerns(setCookieHeader)) {
        for (QNetworkCookie &cookie : cookies)
            cookie.setValue(QXRedaction::marker.toUtf8());
    }
    return cookies;
}
