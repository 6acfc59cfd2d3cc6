#include "Platform/NSHTTPURLResponse.h"

#include "Platform/Localized.h"

#include <algorithm>
#include <iterator>

namespace Quorvix {

namespace {

struct Phrase
{
    qint64 statusCode;
    const char *text;
};

/// The phrases of the platform, sorted by status code.
constexpr Phrase phrases[] = {
    {100, QT_TRANSLATE_NOOP("Quorvix", "continue")},
    {101, QT_TRANSLATE_NOOP("Quorvix", "switching protocols")},
    {102, QT_TRANSLATE_NOOP("Quorvix", "processing")},
    {103, QT_TRANSLATE_NOOP("Quorvix", "early hints")},
    {200, QT_TRANSLATE_NOOP("Quorvix", "no error")},
    {201, QT_TRANSLATE_NOOP("Quorvix", "created")},
    {202, QT_TRANSLATE_NOOP("Quorvix", "accepted")},
    {203, QT_TRANSLATE_NOOP("Quorvix", "non authoritative information")},
    {204, QT_TRANSLATE_NOOP("Quorvix", "no content")},
    {205, QT_TRANSLATE_NOOP("Quorvix", "reset content")},
    {206, QT_TRANSLATE_NOOP("Quorvix", "partial content")},
    {207, QT_TRANSLATE_NOOP("Quorvix", "multi status")},
    {208, QT_TRANSLATE_NOOP("Quorvix", "already reported")},
    {226, QT_TRANSLATE_NOOP("Quorvix", "im used")},
    {300, QT_TRANSLATE_NOOP("Quorvix", "multiple choices")},
    {301, QT_TRANSLATE_NOOP("Quorvix", "moved permanently")},
    {302, QT_TRANSLATE_NOOP("Quorvix", "found")},
    {303, QT_TRANSLATE_NOOP("Quorvix", "see other")},
    {304, QT_TRANSLATE_NOOP("Quorvix", "not modified")},
    {305, QT_TRANSLATE_NOOP("Quorvix", "needs proxy")},
    {307, QT_TRANSLATE_NOOP("Quorvix", "temporarily redirected")},
    {308, QT_TRANSLATE_NOOP("Quorvix", "permanently redirected")},
    {400, QT_TRANSLATE_NOOP("Quorvix", "bad request")},
    {401, QT_TRANSLATE_NOOP("Quorvix", "unauthorized")},
    {402, QT_TRANSLATE_NOOP("Quorvix", "payment required")},
    {403, QT_TRANSLATE_NOOP("Quorvix", "forbidden")},
    {404, QT_TRANSLATE_NOOP("Quorvix", "not found")},
    {405, QT_TRANSLATE_NOOP("Quorvix", "method not allowed")},
    {406, QT_TRANSLATE_NOOP("Quorvix", "unacceptable")},
    {407, QT_TRANSLATE_NOOP("Quorvix", "proxy authentication required")},
    {408, QT_TRANSLATE_NOOP("Quorvix", "request timed out")},
    {409, QT_TRANSLATE_NOOP("Quorvix", "conflict")},
    {410, QT_TRANSLATE_NOOP("Quorvix", "no longer exists")},
    {411, QT_TRANSLATE_NOOP("Quorvix", "length required")},
    {412, QT_TRANSLATE_NOOP("Quorvix", "precondition failed")},
    {413, QT_TRANSLATE_NOOP("Quorvix", "request too large")},
    {414, QT_TRANSLATE_NOOP("Quorvix", "requested URL too long")},
    {415, QT_TRANSLATE_NOOP("Quorvix", "unsupported media type")},
    {416, QT_TRANSLATE_NOOP("Quorvix", "requested range not satisfiable")},
    {417, QT_TRANSLATE_NOOP("Quorvix", "expectation failed")},
    {421, QT_TRANSLATE_NOOP("Quorvix", "misdirected request")},
    {422, QT_TRANSLATE_NOOP("Quorvix", "unprocessable content")},
    {423, QT_TRANSLATE_NOOP("Quorvix", "locked")},
    {424, QT_TRANSLATE_NOOP("Quorvix", "failed dependency")},
    {425, QT_TRANSLATE_NOOP("Quorvix", "too early")},
    {426, QT_TRANSLATE_NOOP("Quorvix", "upgrade required")},
    {428, QT_TRANSLATE_NOOP("Quorvix", "precondition required")},
    {429, QT_TRANSLATE_NOOP("Quorvix", "too many requests")},
    {431, QT_TRANSLATE_NOOP("Quorvix", "request header fields too large")},
    {451, QT_TRANSLATE_NOOP("Quorvix", "unavailable for legal reasons")},
    {500, QT_TRANSLATE_NOOP("Quorvix", "internal server error")},
    {501, QT_TRANSLATE_NOOP("Quorvix", "unimplemented")},
    {502, QT_TRANSLATE_NOOP("Quorvix", "bad gateway")},
    {503, QT_TRANSLATE_NOOP("Quorvix", "service unavailable")},
    {504, QT_TRANSLATE_NOOP("Quorvix", "gateway timed out")},
    {505, QT_TRANSLATE_NOOP("Quorvix", "unsupported version")},
    {506, QT_TRANSLATE_NOOP("Quorvix", "variant also negotiates")},
    {507, QT_TRANSLATE_NOOP("Quorvix", "insufficient storage")},
    {508, QT_TRANSLATE_NOOP("Quorvix", "loop detected")},
    {510, QT_TRANSLATE_NOOP("Quorvix", "not extended")},
    {511, QT_TRANSLATE_NOOP("Quorvix", "network authentication required")},
};
static_assert(std::ranges::is_sorted(phrases, {}, &Phrase::statusCode));

/// The text for a code that has no phrase: one for each hundred, and the last one for all other codes.
constexpr const char *classes[] = {
    QT_TRANSLATE_NOOP("Quorvix", "informational"), QT_TRANSLATE_NOOP("Quorvix", "success"),
    QT_TRANSLATE_NOOP("Quorvix", "redirected"),    QT_TRANSLATE_NOOP("Quorvix", "client error"),
    QT_TRANSLATE_NOOP("Quorvix", "server error"),
};

const char *phraseForStatusCode(qint64 statusCode)
{
    const auto *const found = std::ranges::lower_bound(phrases, statusCode, {}, &Phrase::statusCode);
    if (found != std::end(phrases) && found->statusCode == statusCode)
        return found->text;
    const qint64 hundreds = statusCode / 100;
    return hundreds >= 1 && hundreds <= 4 ? classes[hundreds - 1] : classes[4];
}

} // namespace

QString NSHTTPURLResponse::localizedStringForStatusCode(qint64 statusCode)
{
    return localized(phraseForStatusCode(statusCode));
}

} // namespace Quorvix
