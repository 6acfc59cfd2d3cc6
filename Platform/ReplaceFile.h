#pragma once

#include "Platform/OpenFolder.h"

namespace Quorvix {

/// Writes the file at @p path, which the user or the host has chosen. It appears complete or not at all, and
/// replaces an existing file, unless that is protected against writing. A new file can be read and written by
/// this user only; an existing one of this user's keeps its permissions, if it has no other name. A device or
/// pipe is written to, and never replaced.
///
/// Links are followed if they are this user's or the system's. A link of another user is not, because it may
/// lead to any file of this user's. Nor is anything written to a device or pipe of another user.
///
/// Errors are of NSCocoaErrorDomain: those of @p writer, NSFileWriteNoPermissionError if the file cannot be
/// created or is another user's trap, NSFileWriteUnknownError if it cannot be written. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT std::optional<NSError> replaceFile(const QString &path,
                                                                         const FileWriter &writer);

} // namespace Quorvix
