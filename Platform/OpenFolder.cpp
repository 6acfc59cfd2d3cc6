#include "Platform/OpenFolder.h"

#include "Platform/Localized.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <QtCore/QTemporaryFile>

#include <filesystem>
#endif

#include <system_error>

namespace Quorvix {

namespace {

NSError failure(NSCocoaErrorCode code, const QString &sentence)
{
    return {NSCocoaErrorDomain, code, sentence};
}

NSError failure(NSCocoaErrorCode code, const std::error_code &reason)
{
    return failure(code, QString::fromLocal8Bit(reason.message().c_str()));
}

NSError notOwn()
{
    return failure(
        NSFileWriteInvalidFileNameError,
        QCoreApplication::translate("Quorvix", "The file's folder is not one of its owner's own."));
}

NSError notThere()
{
    return failure(NSFileWriteNoPermissionError,
                   QCoreApplication::translate("Quorvix", "The folder doesn't exist."));
}

NSError notCreated()
{
    return failure(NSFileWriteUnknownError,
                   QCoreApplication::translate("Quorvix", "The folder could not be created."));
}

} // namespace

std::optional<NSError> fillFile(QFileDevice &file, const FileWriter &writer)
{
    if (auto error = writer(file))
        return error;
    if (!file.flush() || file.error() != QFileDevice::NoError)
        return failure(NSFileWriteUnknownError, file.errorString());
    return std::nullopt;
}

OpenFolder::OpenFolder(std::shared_ptr<const Handle> handle, QString path)
    : m_handle(std::move(handle)), m_path(std::move(path))
{
}

QString OpenFolder::pathOf(const QString &name) const
{
    // QDir takes a name that begins with a colon for the path of a resource.
    return m_path.endsWith(u'/') ? m_path + name : m_path + u'/' + name;
}

#ifdef Q_OS_UNIX

namespace {

// A folder that this user may not list, as some make a shared one, can still be opened in this way.
#if defined(O_PATH)
constexpr int lookUp = O_PATH;
#elif defined(O_SEARCH)
constexpr int lookUp = O_SEARCH;
#else
constexpr int lookUp = O_RDONLY;
#endif

constexpr mode_t ownerOnly = S_IRWXU;

std::error_code systemError()
{
    return {errno, std::generic_category()};
}

QByteArray temporaryName()
{
    return ".Quorvix-" + QByteArray::number(QRandomGenerator::system()->generate64(), 36);
}

} // namespace

class OpenFolder::Handle final
{
public:
    explicit Handle(int descriptor) : m_descriptor(descriptor)
    {
        if (::fstat(descriptor, &m_status) != 0)
            m_status = {};
    }
    ~Handle() { ::close(m_descriptor); }
    Q_DISABLE_COPY_MOVE(Handle)

    [[nodiscard]] int descriptor() const { return m_descriptor; }
    [[nodiscard]] bool isOwn() const { return m_status.st_uid == ::geteuid(); }
    [[nodiscard]] mode_t mode() const { return m_status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO); }

    /// A new file, which only this user can open; its name is set to @p name. -1 if there can be none.
    [[nodiscard]] int createFile(QByteArray &name) const
    {
        int descriptor = -1;
        do {
            name = temporaryName();
            descriptor = ::openat(m_descriptor, name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                                  S_IRUSR | S_IWUSR);
        } while (descriptor < 0 && errno == EEXIST);
        return descriptor;
    }

private:
    int m_descriptor;
    struct stat m_status = {};
};

Result<OpenFolder> OpenFolder::at(const QString &absolutePath)
{
    const int descriptor =
        ::open(QFile::encodeName(absolutePath).constData(), lookUp | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0)
        return OpenFolder(std::make_shared<Handle>(descriptor), absolutePath);
    if (errno == ENOENT || errno == ENOTDIR)
        return notThere();
    return failure(NSFileWriteNoPermissionError, systemError());
}

Result<OpenFolder> OpenFolder::subfolder(const QString &name) const
{
    const QByteArray bytes = QFile::encodeName(name);
    const bool isNew = ::mkdirat(m_handle->descriptor(), bytes.constData(), ownerOnly) == 0;
    const bool exists = isNew || errno == EEXIST;
    const int descriptor =
        ::openat(m_handle->descriptor(), bytes.constData(), lookUp | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return exists ? notOwn() : notCreated();
    auto handle = std::make_shared<const Handle>(descriptor);
    if (!handle->isOwn())
        return notOwn();
    return OpenFolder(std::move(handle), pathOf(name));
}

bool OpenFolder::isShared() const
{
    return !m_handle->isOwn() || (m_handle->mode() & (S_IWGRP | S_IWOTH)) != 0;
}

bool OpenFolder::isPrivate() const
{
    return m_handle->isOwn() && m_handle->mode() == ownerOnly;
}

std::optional<NSError> OpenFolder::write(const QString &name, const FileWriter &writer,
                                         const Manner &manner) const
{
    QByteArray temporary;
    const int descriptor = m_handle->createFile(temporary);
    if (descriptor < 0)
        return failure(NSFileWriteNoPermissionError, systemError());
    QFile file;
    std::optional<NSError> error;
    if (!file.open(descriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle)) {
        error = failure(NSFileWriteNoPermissionError, file.errorString());
        ::close(descriptor);
    } else {
        error = fillFile(file, writer);
    }
    // A file system without permissions may refuse to set them, and one may refuse to synchronize.
    if (!error && manner.permissions != Manner().permissions)
        file.setPermissions(manner.permissions);
    if (!error && manner.isSynchronized)
        ::fsync(descriptor);
    if (!error && ::renameat(m_handle->descriptor(), temporary.constData(), m_handle->descriptor(),
                             QFile::encodeName(name).constData()) != 0)
        error = failure(NSFileWriteUnknownError, systemError());
    if (error)
        ::unlinkat(m_handle->descriptor(), temporary.constData(), 0);
    return error;
}

#else

class OpenFolder::Handle final
{
};

Result<OpenFolder> OpenFolder::at(const QString &absolutePath)
{
    if (!QFileInfo(absolutePath).isDir())
        return notThere();
    return OpenFolder(nullptr, absolutePath);
}

Result<OpenFolder> OpenFolder::subfolder(const QString &name) const
{
    const QString path = pathOf(name);
    if (!QDir(m_path).mkdir(name) && !QFileInfo::exists(path))
        return notCreated();
    const QFileInfo folder(path);
    if (!folder.isDir() || folder.isSymLink() || folder.isJunction())
        return notOwn();
    return OpenFolder(nullptr, path);
}

bool OpenFolder::isShared() const
{
    return false;
}

bool OpenFolder::isPrivate() const
{
    return true;
}

std::optional<NSError> OpenFolder::write(const QString &name, const FileWriter &writer, const Manner &) const
{
    QTemporaryFile file(pathOf(QStringLiteral(".Quorvix-XXXXXX")));
    if (!file.open())
        return failure(NSFileWriteNoPermissionError, file.errorString());
    if (auto error = fillFile(file, writer))
        return error;
    const QString temporary = file.fileName();
    std::error_code reason;
    std::filesystem::rename(QFileInfo(temporary).filesystemFilePath(),
                            QFileInfo(pathOf(name)).filesystemFilePath(), reason);
    if (reason)
        return failure(NSFileWriteUnknownError, reason);
    file.setAutoRemove(false);
    return std::nullopt;
}

#endif

} // namespace Quorvix
