#include "Platform/ReplaceFile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
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

    OpenFolder::Manner manner;
    manner.isSynchronized = true;
    if (existing && isOwn(*existing))
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
