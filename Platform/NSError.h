#pragma once

#include "PlatformGlobal.h"

#include <QtCore/QString>

namespace Quorvix {

/// A failure as a value: its domain, its code in that domain, and a sentence for people.
struct NSError
{
    /// Where the code has its meaning: one of the domains below, or one of the application.
    QString domain;
    /// The error's number in its domain.
    qint64 code = 0;
    /// A sentence for people, in their language where there is a translation.
    QString localizedDescription;

    /// Compares all fields.
    bool operator==(const NSError &) const = default;
};

/// Domain of the errors of the URL loading system.
inline constexpr QLatin1StringView NSURLErrorDomain{"NSURLErrorDomain"};
/// Domain of errors about files, bytes and encodings.
inline constexpr QLatin1StringView NSCocoaErrorDomain{"NSCocoaErrorDomain"};

/// Codes of NSCocoaErrorDomain that this platform reports.
enum NSCocoaErrorCode : qint64 {
    NSFileWriteUnknownError = 512,
    NSFileWriteNoPermissionError = 513,
    NSFileWriteInvalidFileNameError = 514,
    NSUserCancelledError = 3072,
    NSPropertyListReadCorruptError = 3840,
};

/// Codes of NSURLErrorDomain that this platform reports.
enum NSURLErrorCode : qint64 {
    NSURLErrorUnknown = -1,
    NSURLErrorCancelled = -999,
    NSURLErrorBadURL = -1000,
    NSURLErrorTimedOut = -1001,
    NSURLErrorUnsupportedURL = -1002,
    NSURLErrorCannotFindHost = -1003,
    NSURLErrorCannotConnectToHost = -1004,
    NSURLErrorNetworkConnectionLost = -1005,
    NSURLErrorDNSLookupFailed = -1006,
    NSURLErrorHTTPTooManyRedirects = -1007,
    NSURLErrorResourceUnavailable = -1008,
    NSURLErrorNotConnectedToInternet = -1009,
    NSURLErrorRedirectToNonExistentLocation = -1010,
    NSURLErrorBadServerResponse = -1011,
    NSURLErrorUserAuthenticationRequired = -1013,
    NSURLErrorCannotDecodeRawData = -1015,
    NSURLErrorCannotDecodeContentData = -1016,
    NSURLErrorCannotParseResponse = -1017,
    NSURLErrorDataLengthExceedsMaximum = -1103,
    NSURLErrorSecureConnectionFailed = -1200,
    NSURLErrorServerCertificateHasBadDate = -1201,
    NSURLErrorServerCertificateUntrusted = -1202,
    NSURLErrorServerCertificateHasUnknownRoot = -1203,
    NSURLErrorServerCertificateNotYetValid = -1204,
    NSURLErrorClientCertificateRejected = -1205,
    NSURLErrorClientCertificateRequired = -1206,
};

/// An error of NSURLErrorDomain with the platform's sentence for @p code. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT NSError makeURLError(NSURLErrorCode code);

} // namespace Quorvix
