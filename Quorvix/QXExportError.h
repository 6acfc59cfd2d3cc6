#pragma once

#include "Platform/NSError.h"
#include "Platform/PlatformGlobal.h"

/// The reason why an export failed.
enum class QXExportError {
    /// The exchange has no URL.
    missingRequestURL,
    /// The exchange has no method.
    missingRequestMethod,
    /// There is no response body to use in a mock.
    missingResponseBody,
    /// The response body is not JSON.
    responseBodyNotJSON,
    /// The path has no version segment, or no segment after it.
    unmappableRequestPath,
    /// The mock file could not be encoded or written.
    mockFileNotCreated,
    /// There is no JSON to make a model from.
    missingPayload,
    /// The payload is not JSON.
    payloadNotParsed,
    /// Too many types need the same name.
    swiftModelNotGenerated,
    /// The model's file could not be written.
    swiftModelFileNotCreated,
};

/// Makes the error with the message for the user, in the domain "QXExportError". Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT Quorvix::NSError makeError(QXExportError reason);
