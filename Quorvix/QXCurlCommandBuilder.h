#pragma once

#include "Quorvix/QXExportedTrace.h"

#include "Platform/PlatformGlobal.h"
#include "Platform/Result.h"

#include <QtCore/QString>

class QXTaskProgress;

/// Writes a request as a `curl` command line that repeats the request, for any POSIX shell.
///
/// URL, headers and body are written between single quotes, where a shell changes nothing (POSIX shell,
/// 2.2.2). So is a method of other characters than letters, digits, "-", "_" and ".". A carriage return,
/// alone or before a line feed, becomes a line feed. Brackets in a URL are percent-encoded, except around the
/// address of a host, because curl takes them for ranges.
///
/// The command cannot express some requests without loss. The shell drops NUL bytes, and the line feeds at
/// the end of a body that is not UTF-8. If such a body begins with "@", curl reads it as a file name. curl
/// resolves "..", sends no header without a value, and treats a URL that begins with a dash as an option.
/// Linux starts no program with an argument of more than 128 KiB, so a command with a larger body can be read
/// but not run. In place of a body that was removed there is a comment after the command.
class QUORVIX_INTERNAL_EXPORT QXCurlCommandBuilder
{
public:
    /// Returns the command, without a line feed at its end. Uses little more memory than the command itself.
    ///
    /// Fails with QXExportError::missingRequestURL if the URL is absent or empty, and with
    /// NSCocoaErrorDomain / NSUserCancelledError if the task is cancelled through @p progress. Linear in the
    /// size of the trace. Any thread, if no other thread changes the trace.
    static Quorvix::Result<QString> build(const QXExportedTrace &exported,
                                          QXTaskProgress *progress = nullptr);
};
