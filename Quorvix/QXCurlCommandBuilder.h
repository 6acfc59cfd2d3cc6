#pragma once

#include "Platform/PlatformGlobal.h"
#include "Platform/Result.h"

#include <QtCore/QString>

struct QXRequestTrace;

/// Writes a request as a command line that repeats it with `curl`, for any POSIX shell.
///
/// URL, headers and body stand between single quotes, where a shell leaves everything as it is (POSIX shell,
/// 2.2.2); a carriage return, alone or before a line feed, becomes a line feed. The method is not quoted: one
/// that is no HTTP token (RFC 9110, 5.6.2) is read by the shell.
///
/// Some requests cannot be told to the tools without loss. The shell drops NUL bytes, and the line feeds at
/// the end of a body that is not UTF-8; such a body names a file when it begins with "@". curl reads brackets
/// in a URL as ranges, resolves "..", sends no header that has no value, and takes a URL that begins with a
/// dash for options. Linux starts no program with an argument beyond 128 KiB, so a command with a larger body
/// is one to read, not to run.
class QUORVIX_INTERNAL_EXPORT QXCurlCommandBuilder
{
public:
    /// The command, without a line feed at its end: text, as it is shared and copied. Little more memory is
    /// needed than the command takes.
    ///
    /// Fails with QXExportError::missingRequestURL when there is no URL or an empty one. Linear in the size
    /// of the trace. Any thread, with a trace that no other thread changes.
    static Quorvix::Result<QString> build(const QXRequestTrace &trace);
};
