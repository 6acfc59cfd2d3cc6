#include "Platform/KnownHeaderNames.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace Quorvix {

namespace {

/// The spelling is that of HTTPHeaderName::usualSpelling().
constexpr auto names = std::to_array<std::u16string_view>({
    u"Accept",
    u"Accept-Charset",
    u"Accept-Encoding",
    u"Accept-Language",
    u"Accept-Ranges",
    u"Access-Control-Allow-Credentials",
    u"Access-Control-Allow-Headers",
    u"Access-Control-Allow-Methods",
    u"Access-Control-Allow-Origin",
    u"Access-Control-Expose-Headers",
    u"Access-Control-Max-Age",
    u"Access-Control-Request-Headers",
    u"Access-Control-Request-Method",
    u"Age",
    u"Allow",
    u"Alt-Svc",
    u"Authorization",
    u"CDN-Cache-Control",
    u"Cache-Control",
    u"CF-Cache-Status",
    u"CF-RAY",
    u"Connection",
    u"Content-Disposition",
    u"Content-Encoding",
    u"Content-Language",
    u"Content-Length",
    u"Content-Location",
    u"Content-MD5",
    u"Content-Range",
    u"Content-Security-Policy",
    u"Content-Type",
    u"Cookie",
    u"Cross-Origin-Embedder-Policy",
    u"Cross-Origin-Opener-Policy",
    u"Cross-Origin-Resource-Policy",
    u"Date",
    u"DNT",
    u"DPoP",
    u"ETag",
    u"Expect",
    u"Expires",
    u"Forwarded",
    u"From",
    u"Host",
    u"If-Match",
    u"If-Modified-Since",
    u"If-None-Match",
    u"If-Range",
    u"If-Unmodified-Since",
    u"Keep-Alive",
    u"Last-Modified",
    u"Link",
    u"Location",
    u"MIME-Version",
    u"NEL",
    u"Origin",
    u"Permissions-Policy",
    u"Pragma",
    u"Priority",
    u"Proxy-Authorization",
    u"RateLimit",
    u"RateLimit-Limit",
    u"RateLimit-Policy",
    u"RateLimit-Remaining",
    u"RateLimit-Reset",
    u"Range",
    u"Referer",
    u"Referrer-Policy",
    u"Report-To",
    u"Retry-After",
    u"Sec-Fetch-Dest",
    u"Sec-Fetch-Mode",
    u"Sec-Fetch-Site",
    u"Server",
    u"Server-Timing",
    u"Set-Cookie",
    u"Strict-Transport-Security",
    u"TE",
    u"Timing-Allow-Origin",
    u"Traceparent",
    u"Tracestate",
    u"Trailer",
    u"Transfer-Encoding",
    u"Upgrade",
    u"User-Agent",
    u"Vary",
    u"Via",
    u"WWW-Authenticate",
    u"Warning",
    u"X-API-Key",
    u"X-Amz-Cf-Id",
    u"X-Amz-Cf-Pop",
    u"X-Amz-Request-Id",
    u"X-Cache",
    u"X-Cache-Hits",
    u"X-Client-Version",
    u"X-Content-Type-Options",
    u"X-Correlation-ID",
    u"X-CSRF-Token",
    u"X-Forwarded-For",
    u"X-Forwarded-Host",
    u"X-Forwarded-Proto",
    u"X-Frame-Options",
    u"X-Powered-By",
    u"X-RateLimit-Limit",
    u"X-RateLimit-Remaining",
    u"X-RateLimit-Reset",
    u"X-Request-ID",
    u"X-Requested-With",
    u"X-Response-Time",
    u"X-Runtime",
    u"X-Served-By",
    u"X-Timer",
    u"X-Trace-ID",
    u"X-XSS-Protection",
    u"baggage",
    u"sentry-trace",
    u"traceparent",
    u"tracestate",
});
static_assert(names.size() < 256);

constexpr std::size_t slots = 1024;

/// Few characters tell the names apart.
constexpr std::size_t slotOf(std::u16string_view name)
{
    const std::size_t size = name.size();
    const auto at = [&](std::size_t place) -> std::size_t {
        return name[place];
    };
    return (size * 37 + at(0) * 5 + at(size / 2) * 131 + at(size - 1) * 17 + at(size * 3 / 4) * 59) % slots;
}

/// The number of each name in its slot, or in the next free one.
constexpr auto table = [] {
    std::array<uchar, slots> numbers{};
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::size_t slot = slotOf(names[i]);
        while (numbers[slot])
            slot = (slot + 1) % slots;
        numbers[slot] = uchar(i + 1);
    }
    return numbers;
}();

} // namespace

uchar KnownHeaderNames::number(QStringView text) noexcept
{
    if (text.isEmpty())
        return 0;
    const std::u16string_view name(text.utf16(), std::size_t(text.size()));
    std::size_t slot = slotOf(name);
    // The comparison of string views goes character by character.
    const auto isOther = [name](std::u16string_view known) {
        return known.size() != name.size() ||
               std::memcmp(known.data(), name.data(), name.size() * sizeof(char16_t)) != 0;
    };
    while (table[slot] && isOther(names[table[slot] - 1U]))
        slot = (slot + 1) % slots;
    return table[slot];
}

const QString &KnownHeaderNames::name(uchar number)
{
    static const auto texts = [] {
        std::array<QString, names.size()> made;
        std::ranges::transform(names, made.begin(), [](std::u16string_view name) {
            return QString::fromUtf16(name.data(), qsizetype(name.size()));
        });
        return made;
    }();
    return texts[number - 1U];
}

} // namespace Quorvix
