#include "Platform/HTTPHeaderName.h"

#include <QtCore/QByteArrayView>

#include <algorithm>
#include <array>

namespace Quorvix {

namespace {

/// Names whose usual spelling is not simply a capital letter at the start of each word, and those that the
/// exports look up in their usual spelling. In alphabetical order regardless of case.
constexpr std::array knownNames{
    "A-IM",
    "Accept-CH",
    "ALPN",
    "AMP-Cache-Transform",
    "C-PEP",
    "C-PEP-Info",
    "Cal-Managed-ID",
    "CalDAV-Timezones",
    "CDN-Cache-Control",
    "CDN-Loop",
    "CMCD-Object",
    "CMCD-Request",
    "CMCD-Session",
    "CMCD-Status",
    "CMSD-Dynamic",
    "CMSD-Static",
    "Content-DPR",
    "Content-ID",
    "Content-MD5",
    "Content-Type",
    "Cookie",
    "CTA-Common-Access-Token",
    "DASL",
    "DAV",
    "Differential-ID",
    "DNT",
    "DPoP",
    "DPoP-Nonce",
    "DPR",
    "ECT",
    "EDIINT-Features",
    "ETag",
    "Expect-CT",
    "GetProfile",
    "HTTP2-Settings",
    "IM",
    "Include-Referred-Token-Binding-ID",
    "Last-Event-ID",
    "MIME-Version",
    "NEL",
    "OData-EntityId",
    "OData-Isolation",
    "OData-MaxVersion",
    "OData-Version",
    "Optional-WWW-Authenticate",
    "OSCORE",
    "OSLC-Core-Version",
    "P3P",
    "PEP",
    "PICS-Label",
    "ProfileObject",
    "RateLimit",
    "RateLimit-Limit",
    "RateLimit-Policy",
    "RateLimit-Remaining",
    "RateLimit-Reset",
    "Repeatability-Client-ID",
    "Repeatability-Request-ID",
    "RTT",
    "Sec-CH-Prefers-Color-Scheme",
    "Sec-CH-Prefers-Reduced-Motion",
    "Sec-CH-Prefers-Reduced-Transparency",
    "Sec-CH-UA",
    "Sec-CH-UA-Arch",
    "Sec-CH-UA-Bitness",
    "Sec-CH-UA-Form-Factors",
    "Sec-CH-UA-Full-Version",
    "Sec-CH-UA-Full-Version-List",
    "Sec-CH-UA-Mobile",
    "Sec-CH-UA-Model",
    "Sec-CH-UA-Platform",
    "Sec-CH-UA-Platform-Version",
    "Sec-CH-UA-WoW64",
    "Sec-GPC",
    "Sec-WebSocket-Accept",
    "Sec-WebSocket-Extensions",
    "Sec-WebSocket-Key",
    "Sec-WebSocket-Protocol",
    "Sec-WebSocket-Version",
    "Set-Cookie",
    "SetProfile",
    "SLUG",
    "SOAPAction",
    "SourceMap",
    "Status-URI",
    "TCN",
    "TE",
    "TTL",
    "UA-Color",
    "UA-Media",
    "UA-Pixels",
    "UA-Resolution",
    "UA-Windowpixels",
    "URI",
    "WWW-Authenticate",
    "X-API-Key",
    "X-Client-IP",
    "X-Correlation-ID",
    "X-CSRF-Token",
    "X-DNS-Prefetch-Control",
    "X-HTTP-Method-Override",
    "X-RateLimit-Limit",
    "X-RateLimit-Remaining",
    "X-RateLimit-Reset",
    "X-Real-IP",
    "X-Request-ID",
    "X-Trace-ID",
    "X-UA-Compatible",
    "X-XSRF-Token",
    "X-XSS-Protection",
};

char lowerCase(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Compares regardless of case. Nearly always the first characters decide, so this is faster than a function
/// of the library.
bool isBefore(const char *left, const char *right)
{
    while (*left && lowerCase(*left) == lowerCase(*right)) {
        ++left;
        ++right;
    }
    return static_cast<uchar>(lowerCase(*left)) < static_cast<uchar>(lowerCase(*right));
}

bool hasCapital(QByteArrayView name)
{
    return std::any_of(name.begin(), name.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

QByteArray capitalized(QByteArray name)
{
    bool wordStarts = true;
    for (char &c : name) {
        if (wordStarts && c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
        wordStarts = c == '-';
    }
    return name;
}

} // namespace

QByteArray HTTPHeaderName::usualSpelling(const QByteArray &name)
{
    const auto *const found =
        std::lower_bound(knownNames.begin(), knownNames.end(), name.constData(), isBefore);
    // The comparison ends at a NUL, which a hostile name can contain.
    if (found != knownNames.end() && !isBefore(name.constData(), *found) &&
        qstrlen(*found) == size_t(name.size()))
        return *found;
    return hasCapital(name) ? name : capitalized(name);
}

} // namespace Quorvix
