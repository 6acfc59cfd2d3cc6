#include "Platform/NSError.h"

#include <QtCore/QCoreApplication>

namespace Quorvix {

namespace {

const char *sentenceFor(NSURLErrorCode code)
{
    switch (code) {
    case NSURLErrorCancelled:
        return "cancelled";
    case NSURLErrorBadURL:
        return "bad URL";
    case NSURLErrorTimedOut:
        return "The request timed out.";
    case NSURLErrorUnsupportedURL:
        return "unsupported URL";
    case NSURLErrorCannotFindHost:
        return "A server with the specified hostname could not be found.";
    case NSURLErrorCannotConnectToHost:
        return "Could not connect to the server.";
    case NSURLErrorNetworkConnectionLost:
        return "The network connection was lost.";
    case NSURLErrorDNSLookupFailed:
        return "The host's address could not be looked up.";
    case NSURLErrorHTTPTooManyRedirects:
        return "too many HTTP redirects";
    case NSURLErrorResourceUnavailable:
        return "resource unavailable";
    case NSURLErrorNotConnectedToInternet:
        return "The Internet connection appears to be offline.";
    case NSURLErrorRedirectToNonExistentLocation:
        return "redirected to a location that does not exist";
    case NSURLErrorBadServerResponse:
        return "There was a bad response from the server.";
    case NSURLErrorUserAuthenticationRequired:
        return "Authentication is required.";
    case NSURLErrorCannotDecodeContentData:
        return "cannot decode the content";
    case NSURLErrorCannotParseResponse:
        return "cannot parse response";
    case NSURLErrorSecureConnectionFailed:
        return "A TLS error caused the secure connection to fail.";
    case NSURLErrorServerCertificateHasBadDate:
    case NSURLErrorServerCertificateNotYetValid:
    case NSURLErrorServerCertificateUntrusted:
    case NSURLErrorServerCertificateHasUnknownRoot:
        return "The certificate for this server is invalid.";
    case NSURLErrorClientCertificateRejected:
        return "The server did not accept the certificate.";
    case NSURLErrorUnknown:
        break;
    }
    return "unknown error";
}

} // namespace

NSError makeURLError(NSURLErrorCode code)
{
    return {NSURLErrorDomain, code, QCoreApplication::translate("Quorvix", sentenceFor(code))};
}

} // namespace Quorvix
