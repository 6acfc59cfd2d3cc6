#pragma once

#include "Platform/NSError.h"
#include "Platform/Result.h"

#include <QtCore/QFileDevice>
#include <QtCore/QString>

#include <functional>
#include <memory>
#include <optional>

class QIODevice;

namespace Quorvix {

/// Writes the content of a file to the device, and returns an error if the device did not accept all of it.
/// Only the writer can detect this.
using FileWriter = std::function<std::optional<NSError>(QIODevice &)>;

/// Has the open file written. Afterwards the system has all of the content, or the error says why not: that
/// of the writer, or NSFileWriteUnknownError. On the file's thread.
[[nodiscard]] std::optional<NSError> fillFile(QFileDevice &file, const FileWriter &writer);

/// A folder that is held open. What is written goes to this folder, even if another user moves it meanwhile
/// and puts a link or another folder in its place. Outside of Unix the path of the folder is held, where no
/// other user shares the folders in which files are exported.
///
/// A value: copies refer to the same folder. Errors are of NSCocoaErrorDomain. Any thread.
class OpenFolder final
{
public:
    /// Opens an existing folder. Links on the way are followed.
    [[nodiscard]] static Result<OpenFolder> at(const QString &absolutePath);

    /// Opens the subfolder @p name, which is created if it is missing, then for this user only. Fails with
    /// NSFileWriteInvalidFileNameError if it is a link or belongs to another user.
    [[nodiscard]] Result<OpenFolder> subfolder(const QString &name) const;

    /// The path by which the folder was found.
    [[nodiscard]] const QString &path() const noexcept { return m_path; }
    /// The path of an entry with this name.
    [[nodiscard]] QString pathOf(const QString &name) const;
    /// Whether other users can create or remove files in it.
    [[nodiscard]] bool isShared() const;
    /// Whether it is this user's, and no other user can look into it.
    [[nodiscard]] bool isPrivate() const;

    /// How a file is written.
    struct Manner
    {
        /// What the finished file gets. While it is written only this user can read it.
        QFileDevice::Permissions permissions = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
        /// Whether the content reaches the disk before the file gets its name.
        bool isSynchronized = false;
    };

    /// Writes the file @p name, which has to be a name without a path. The file appears complete or not at
    /// all. It replaces an existing file or link of that name, but not the file to which a link leads.
    ///
    /// Returns the error of @p writer, NSFileWriteNoPermissionError if no file can be created, or
    /// NSFileWriteUnknownError.
    [[nodiscard]] std::optional<NSError> write(const QString &name, const FileWriter &writer,
                                               const Manner &manner) const;
    /// The same for a file that only this user can read and write.
    [[nodiscard]] std::optional<NSError> write(const QString &name, const FileWriter &writer) const
    {
        return write(name, writer, Manner());
    }

private:
    class Handle;

    OpenFolder(std::shared_ptr<const Handle> handle, QString path);

    std::shared_ptr<const Handle> m_handle;
    QString m_path;
};

} // namespace Quorvix
