#pragma once

#include "Platform/PlatformGlobal.h"
#include "Platform/Result.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QUrl>

#include <functional>
#include <optional>

class QDir;
class QIODevice;

/// Writes exported files. A file appears either complete or not at all. From its first byte on, only its
/// owner can read or write it, because exports can contain passwords and tokens, and all users share the
/// temporary folder.
///
/// Errors are of NSCocoaErrorDomain. Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT QXTemporaryFile
{
public:
    /// Writes the content to the device and returns an error if the device did not accept all of it. Only
    /// the writer can detect this.
    using Writer = std::function<std::optional<Quorvix::NSError>(QIODevice &)>;

    /// Writes a file of this name to an existing folder and returns its file URL. @p writer writes the
    /// content.
    ///
    /// Replaces a file of the same name. Also replaces a symbolic link of that name, but not the file it
    /// points to. Returns the error of @p writer. Rejects a name with a separator, "." and ".." with
    /// NSFileWriteInvalidFileNameError, so that the file is always in @p folder.
    static Quorvix::Result<QUrl> write(const QDir &folder, const QString &fileName, const Writer &writer);

    /// Writes the file at @p path, which is no temporary one: @p path may lead anywhere, also through links.
    /// An existing file keeps its permissions; a new one is its owner's only. Returns the error of @p writer,
    /// NSFileWriteNoPermissionError if no file can be created, or NSFileWriteUnknownError.
    [[nodiscard]] static std::optional<Quorvix::NSError> replace(const QString &path, const Writer &writer);

    /// Writes UTF-8 text to a relative path under the folder "Quorvix" of the process's temporary directory,
    /// and returns its file URL. Creates missing folders that only their owner can access.
    ///
    /// Leading and doubled slashes are ignored. Rejects a path that would leave the folder, through ".." or
    /// through a symbolic link, with NSFileWriteInvalidFileNameError.
    static Quorvix::Result<QUrl> writeText(const QString &relativePath, QByteArrayView utf8);
    /// The same for a text that @p writer writes. Returns the error of @p writer.
    static Quorvix::Result<QUrl> writeText(const QString &relativePath, const Writer &writer);
};
