#pragma once

#include "Platform/NSError.h"
#include "Platform/PlatformGlobal.h"

/// Why an exchange could not be turned into what was asked for.
enum class QXExportError {
    /// The exchange has no URL.
    missingRequestURL,
    /// The exchange has no method.
    missingRequestMethod,
    /// There is no response body that a mock could answer with.
    missingResponseBody,
    /// The response body is not JSON.
    responseBodyNotJSON,
    /// The path has no version segment, or nothing behind it.
    unmappableRequestPath,
    /// The mock file could not be encoded or written.
    mockFileNotCreated,
    /// There is no JSON that a model could be made of.
    missingPayload,
    /// The payload is not JSON.
    payloadNotParsed,
    /// More types want one name than names can be made.
    swiftModelNotGenerated,
    /// The model's file could not be written.
    swiftModelFileNotCreated,
};

/// The error with the sentence that the user is told, in the domain "QXExportError". Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT Quorvix::NSError makeError(QXExportError reason);
