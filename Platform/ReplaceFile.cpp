#include "Platform/ReplaceFile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#else
#include <QtCore/QSaveFile>
#endif

namespace Quorvix {

namespace {

NSError noPermission(const QString &sentence)
{
    return {NSCocoaErrorDomain, NSFileWriteNoPermissionError, sentence};
}

} // namespace

#ifdef Q_OS_UNIX

namespace {

/// What a path names; absent if it names nothing.
std::optional<struct stat> status(const QString &path, bool followsLinks)
{
    struct stat found = {};
    const QByteArray name = QFile::encodeName(path);
    const int result = followsLinks ? ::stat(name.constData(), &found) : ::lstat(name.constData(), &found);
    return result == 0 ? std::optional(found) : std::nullopt;
}

bool isOwn(const struct stat &found)
{
    return found.st_uid == ::geteuid();
}

bool isOwnOrOfSystem(const struct stat &found)
{
    return isOwn(found) || found.st_uid == 0;
}

std::optional<NSError> writeToDevice(const QString &path, const FileWriter &writer)
{
    QFile device(path);
    if (!device.open(QIODevice::WriteOnly | QIODevice::ExistingOnly))
        return noPermission(device.errorString());
    return fillFile(device, writer);
}

} // namespace

std::optional<NSError> replaceFile(const QString &path, const FileWriter &writer)
{
    const NSError trap =
        noPermission(QCoreApplication::translate("Quorvix", "The file or link belongs to another user."));
    constexpr int mostLinks = 40; // as in the kernel of Linux
    QString target = path.isEmpty() ? path : QFileInfo(path).absoluteFilePath();
    const auto existing = status(target, true);
    for (int links = 0;; ++links) {
        const auto entry = status(target, false);
        if (!entry || !S_ISLNK(entry->st_mode))
            break;
        if (!isOwnOrOfSystem(*entry) || links == mostLinks)
            return trap;
        target = QFileInfo(target).symLinkTarget();
    }
    if (existing && !S_ISREG(existing->st_mode) && !S_ISDIR(existing->st_mode))
        return isOwnOrOfSystem(*existing) ? writeToDevice(path, writer) : trap;
    // A folder lets its owner replace a file that is protected against writing, but that is not meant.
    if (existing && ::faccessat(AT_FDCWD, QFile::encodeName(target).constData(), W_OK, AT_EACCESS) != 0)
        return noPermission(
            QString::fromLocal8Bit(std::make_error_code(std::errc::permission_denied).message().c_str()));

    OpenFolder::Manner manner;
    manner.isSynchronized = true;
    // On some systems anybody can give a file of this user's another name, in a folder that users share.
    if (existing && isOwn(*existing) && existing->st_nlink == 1)
        manner.permissions = QFileInfo(target).permissions();
    const QFileInfo file(target);
    const auto folder = OpenFolder::at(file.path());
    return folder ? folder.value().write(file.fileName(), writer, manner) : folder.error();
}

#else

std::optional<NSError> replaceFile(const QString &path, const FileWriter &writer)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return noPermission(file.errorString());
    if (auto error = fillFile(file, writer))
        return error;
    if (!file.commit())
        return NSError{NSCocoaErrorDomain, NSFileWriteUnknownError, file.errorString()};
    return std::nullopt;
}

#endif

} // namespace Quorvix
