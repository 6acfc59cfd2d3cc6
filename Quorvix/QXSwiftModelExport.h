#pragma once

#include "Platform/PlatformGlobal.h"
#include "Platform/Result.h"

#include <QtCore/QUrl>

struct QXRequestTrace;

/// Saves Swift types that decode what an exchange carried. Stateless; any thread, with a trace that no other
/// thread changes.
class QUORVIX_INTERNAL_EXPORT QXSwiftModelExport
{
public:
    /// Writes a model of the response body, or of the request body where there is no response body, to a file
    /// that is named after the request's path, and returns its file URL.
    ///
    /// Fails with QXExportError: missingPayload, payloadNotParsed, swiftModelNotGenerated or
    /// swiftModelFileNotCreated.
    static Quorvix::Result<QUrl> exportTrace(const QXRequestTrace &trace);
};
