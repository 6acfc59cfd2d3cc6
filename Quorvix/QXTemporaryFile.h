#pragma once

#include "Platform/OpenFolder.h"
#include "Platform/PlatformGlobal.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QUrl>

/// Writes exported files to the temporary directory of the process (temporaryDirectory()). A file appears
/// either complete or not at all. From its first byte on, only its owner can read or write it, because
/// exports can contain passwords and tokens.
///
/// Errors are of NSCocoaErrorDomain. Any thread.
class QUORVIX_INTERNAL_EXPORT QXTemporaryFile
{
public:
    /// Writes a file of this name and returns its file URL. @p writer writes the content.
    ///
    /// Replaces a file of the same name. Also replaces a symbolic link of that name, but not the file it
    /// points to. Returns the error of @p writer. Rejects a name with a separator, "." and ".." with
    /// NSFileWriteInvalidFileNameError, so that the file is always in the temporary directory.
    static Quorvix::Result<QUrl> write(const QString &fileName, const Quorvix::FileWriter &writer);

    /// Writes UTF-8 text to a relative path under the folder "Quorvix" of the temporary directory, and
    /// returns its file URL. Creates missing folders that only their owner can access.
    ///
    /// Leading and doubled slashes are ignored. Rejects a path that would leave the folder, through ".." or
    /// through a symbolic link, with NSFileWriteInvalidFileNameError.
    static Quorvix::Result<QUrl> writeText(const QString &relativePath, QByteArrayView utf8);
    /// The same for a text that @p writer writes. Returns the error of @p writer.
    static Quorvix::Result<QUrl> writeText(const QString &relativePath, const Quorvix::FileWriter &writer);
    /// Removes a file that one of these functions has written, and that nobody has seen.
    static void remove(const QUrl &file);
};
