#pragma once

#include "Platform/PlatformGlobal.h"
#include "Platform/Result.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QUrl>

#include <functional>
#include <optional>

class QDir;
class QIODevice;

/// Writes exported files. A file is there whole or not at all, and only its owner may read or write it, from
/// its first byte on: what is exported may hold passwords and tokens, and the folder is everybody's.
///
/// Errors are of NSCocoaErrorDomain. Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT QXTemporaryFile
{
public:
    /// Writes the content and reports a write that took less than it was given: only the writer can tell.
    using Writer = std::function<std::optional<Quorvix::NSError>(QIODevice &)>;

    /// Writes a file of this name in an existing folder with what @p writer writes, and returns its file URL.
    ///
    /// Replaces a file of the same name, and a symbolic link of that name rather than what it points to. An
    /// error of @p writer is passed on. A name with a separator, "." and ".." are refused with
    /// NSFileWriteInvalidFileNameError: the file always lies in @p folder.
    static Quorvix::Result<QUrl> write(const QDir &folder, const QString &fileName, const Writer &writer);

    /// Writes UTF-8 text to a relative path under the folder "Quorvix" of the process's temporary directory,
    /// and returns its file URL. Creates missing folders, for their owner only.
    ///
    /// Leading and doubled slashes do not count. A path that would leave the folder, through ".." or through
    /// a symbolic link on the way, is refused with NSFileWriteInvalidFileNameError.
    static Quorvix::Result<QUrl> writeText(const QString &relativePath, QByteArrayView utf8);
};
