#include "Quorvix/QXExportedTrace.h"

#include "Quorvix/QXRedaction.h"
#include "Quorvix/QXRequestCookies.h"

#include <algorithm>

using namespace Quorvix;

namespace {

using Headers = std::optional<HTTPHeaderFields>;

constexpr QStringView cookieHeader = u"Cookie";
constexpr QStringView setCookieHeader = u"Set-Cookie";

bool isConcerned(const Headers &headers)
{
    return headers && std::any_of(headers->keyBegin(), headers->keyEnd(), &QXRedaction::concerns);
}

void redact(Headers &headers)
{
    if (!headers)
        return;
    for (auto it = headers->begin(); it != headers->end(); ++it) {
        if (QXRedaction::concerns(it.key()))
            it.value() = QXRedaction::marker.toString();
    }
}

QList<QXHeaderCookie> redacted(QList<QXHeaderCookie> cookies, QStringView header)
{
    if (QXRedaction::concerns(header)) {
        for (QXHeaderCookie &cookie : cookies)
            cookie.value = QXRedaction::marker;
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
