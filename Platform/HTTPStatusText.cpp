#include "Platform/NSHTTPURLResponse.h"

#include <QtCore/QCoreApplication>

namespace Quorvix {

namespace {

/// The phrases that the platform gives; each is looked up in the host's catalogue under its English text.
const char *phraseForStatusCode(qint64 statusCode)
{
    switch (statusCode) {
    case 100:
        return "continue";
    case 101:
        return "switching protocols";
    case 102:
        return "processing";
    case 103:
        return "early hints";
    case 200:
        return "no error";
    case 201:
        return "created";
    case 202:
        return "accepted";
    case 203:
        return "non authoritative information";
    case 204:
        return "no content";
    case 205:
        return "reset content";
    case 206:
        return "partial content";
    case 207:
        return "multi status";
    case 208:
        return "already reported";
    case 226:
        return "im used";
    case 300:
        return "multiple choices";
    case 301:
        return "moved permanently";
    case 302:
        return "found";
    case 303:
        return "see other";
    case 304:
        return "not modified";
    case 305:
        return "needs proxy";
    case 307:
        return "temporarily redirected";
    case 308:
        return "permanently redirected";
    case 400:
        return "bad request";
    case 401:
        return "unauthorized";
    case 402:
        return "payment required";
    case 403:
        return "forbidden";
    case 404:
        return "not found";
    case 405:
        return "method not allowed";
    case 406:
        return "unacceptable";
    case 407:
        return "proxy authentication required";
    case 408:
        return "request timed out";
    case 409:
        return "conflict";
    case 410:
        return "no longer exists";
    case 411:
        return "length required";
    case 412:
        return "precondition failed";
    case 413:
        return "request too large";
    case 414:
        return "requested URL too long";
    case 415:
        return "unsupported media type";
    case 416:
        return "requested range not satisfiable";
    case 417:
        return "expectation failed";
    case 421:
        return "misdirected request";
    case 422:
        return "unprocessable content";
    case 423:
        return "locked";
    case 424:
        return "failed dependency";
    case 425:
        return "too early";
    case 426:
        return "upgrade required";
    case 428:
        return "precondition required";
    case 429:
        return "too many requests";
    case 431:
        return "request header fields too large";
    case 451:
        return "unavailable for legal reasons";
    case 500:
        return "internal server error";
    case 501:
        return "unimplemented";
    case 502:
        return "bad gateway";
    case 503:
        return "service unavailable";
    case 504:
        return "gateway timed out";
    case 505:
        return "unsupported version";
    case 506:
        return "variant also negotiates";
    case 507:
        return "insufficient storage";
    case 508:
        return "loop detected";
    case 510:
        return "not extended";
    case 511:
        return "network authentication required";
    default:
        break;
    }
    switch (statusCode / 100) {
    case 1:
        return "informational";
    case 2:
        return "success";
    case 3:
        return "redirected";
    case 4:
        return "client error";
    default:
        return "server error";
    }
}

} // namespace

QString NSHTTPURLResponse::localizedStringForStatusCode(qint64 statusCode)
{
    return QCoreApplication::translate("Quorvix", phraseForStatusCode(statusCode));
}

} // namespace Quorvix
