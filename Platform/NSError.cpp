#include "Platform/NSError.h"

#include "Platform/Localized.h"

#include <algorithm>
#include <iterator>

namespace Quorvix {

namespace {

struct Sentence
{
    NSURLErrorCode code;
    const char *text;
};

constexpr Sentence sentences[] = {
    {NSURLErrorCancelled, QT_TRANSLATE_NOOP("Quorvix", "cancelled")},
    {NSURLErrorBadURL, QT_TRANSLATE_NOOP("Quorvix", "bad URL")},
    {NSURLErrorTimedOut, QT_TRANSLATE_NOOP("Quorvix", "The request timed out.")},
    {NSURLErrorUnsupportedURL, QT_TRANSLATE_NOOP("Quorvix", "unsupported URL")},
    {NSURLErrorCannotFindHost,
     QT_TRANSLATE_NOOP("Quorvix", "A server with the specified hostname could not be found.")},
    {NSURLErrorCannotConnectToHost, QT_TRANSLATE_NOOP("Quorvix", "Could not connect to the server.")},
    {NSURLErrorNetworkConnectionLost, QT_TRANSLATE_NOOP("Quorvix", "The network connection was lost.")},
    {NSURLErrorDNSLookupFailed, QT_TRANSLATE_NOOP("Quorvix", "The host's address could not be looked up.")},
    {NSURLErrorHTTPTooManyRedirects, QT_TRANSLATE_NOOP("Quorvix", "too many HTTP redirects")},
    {NSURLErrorResourceUnavailable, QT_TRANSLATE_NOOP("Quorvix", "resource unavailable")},
    {NSURLErrorNotConnectedToInternet,
     QT_TRANSLATE_NOOP("Quorvix", "The Internet connection appears to be offline.")},
    {NSURLErrorRedirectToNonExistentLocation,
     QT_TRANSLATE_NOOP("Quorvix", "redirected to a location that does not exist")},
    {NSURLErrorBadServerResponse, QT_TRANSLATE_NOOP("Quorvix", "There was a bad response from the server.")},
    {NSURLErrorUserAuthenticationRequired, QT_TRANSLATE_NOOP("Quorvix", "Authentication is required.")},
    {NSURLErrorCannotDecodeRawData, QT_TRANSLATE_NOOP("Quorvix", "cannot decode raw data")},
    {NSURLErrorCannotDecodeContentData, QT_TRANSLATE_NOOP("Quorvix", "cannot decode the content")},
    {NSURLErrorCannotParseResponse, QT_TRANSLATE_NOOP("Quorvix", "cannot parse response")},
    {NSURLErrorDataLengthExceedsMaximum, QT_TRANSLATE_NOOP("Quorvix", "resource exceeds maximum size")},
    {NSURLErrorSecureConnectionFailed,
     QT_TRANSLATE_NOOP("Quorvix", "A TLS error caused the secure connection to fail.")},
    {NSURLErrorServerCertificateHasBadDate,
     QT_TRANSLATE_NOOP("Quorvix", "The certificate for this server is invalid.")},
    {NSURLErrorServerCertificateNotYetValid,
     QT_TRANSLATE_NOOP("Quorvix", "The certificate for this server is invalid.")},
    {NSURLErrorServerCertificateUntrusted,
     QT_TRANSLATE_NOOP("Quorvix", "The certificate for this server is invalid.")},
    {NSURLErrorServerCertificateHasUnknownRoot,
     QT_TRANSLATE_NOOP("Quorvix", "The certificate for this server is invalid.")},
    {NSURLErrorClientCertificateRejected,
     QT_TRANSLATE_NOOP("Quorvix", "The server did not accept the certificate.")},
    {NSURLErrorClientCertificateRequired,
     QT_TRANSLATE_NOOP("Quorvix", "The server requires a client certificate.")},
};

const char *sentenceFor(NSURLErrorCode code)
{
    const auto *const found = std::ranges::find(sentences, code, &Sentence::code);
    return found != std::end(sentences) ? found->text : QT_TRANSLATE_NOOP("Quorvix", "unknown error");
}

} // namespace

NSError makeURLError(NSURLErrorCode code)
{
    return {NSURLErrorDomain, code, localized(sentenceFor(code))};
}

} // namespace Quorvix
