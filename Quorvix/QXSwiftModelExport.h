#pragma once

#include "Quorvix/QXExportedTrace.h"

#include "Platform/PlatformGlobal.h"
#include "Platform/Result.h"

#include <QtCore/QUrl>

class QXTaskProgress;

/// Saves Swift types that decode the body of an exchange. Stateless; any thread, if no other thread changes
/// the trace.
class QUORVIX_INTERNAL_EXPORT QXSwiftModelExport
{
public:
    /// Writes a model of the response body, or of the request body if there is no response body, to a file
    /// that is named after the request's path. Returns its file URL.
    ///
    /// Fails with QXExportError: missingPayload, payloadNotParsed, swiftModelNotGenerated or
    /// swiftModelFileNotCreated; or with NSCocoaErrorDomain / NSUserCancelledError, without a file, if the
    /// task is cancelled.
    static Quorvix::Result<QUrl> exportTrace(const QXExportedTrace &exported,
                                             QXTaskProgress *progress = nullptr);
};
