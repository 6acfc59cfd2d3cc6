#include "Quorvix/QXTemporaryFile.h"

#include "Platform/Localized.h"
#include "Platform/WriteAll.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QTemporaryFile>

#include <algorithm>
#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

NSError writeError(NSCocoaErrorCode code, const QString &message)
{
    return {NSCocoaErrorDomain, code, message};
}

NSError writeError(NSCocoaErrorCode code, const char *message)
{
    return writeError(code, localized(message));
}

/// Whether the name is the name of an entry in a folder, on every supported file system.
bool isEntryName(QStringView name)
{
    return !name.isEmpty() && name != "."_L1 && name != ".."_L1 && !name.contains(u'/') &&
           !name.contains(u'\\') && !name.contains(QChar::Null);
}

/// Whether a folder is not a link and belongs to the current user. In a folder of another user, that user
/// could create malicious links at any time.
bool isOwnFolder(const QFileInfo &folder)
{
#ifdef Q_OS_UNIX
    if (folder.ownerId() != ::geteuid())
        return false;
#endif
    return folder.isDir() && !folder.isSymLink();
}

/// Changes @p folder to its subfolder @p name, which is created if it is missing.
std::optional<NSError> enterSubfolder(QDir &folder, const QString &name)
{
    constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    const QFileInfo entry(folder.filePath(name));
    const bool isThere = entry.exists() || entry.isSymLink();
    if (!isThere && !folder.mkdir(name, ownerOnly) && !QFileInfo::exists(entry.filePath()))
        return writeError(NSFileWriteUnknownError,
                          QT_TRANSLATE_NOOP("Quorvix", "The folder could not be created."));
    if (!isOwnFolder(QFileInfo(entry.filePath())))
        return writeError(NSFileWriteInvalidFileNameError,
                          QT_TRANSLATE_NOOP("Quorvix", "The file's folder is not one of its owner's own."));
    folder = QDir(entry.filePath());
    return std::nullopt;
}

std::filesystem::path nativePath(const QString &path)
{
    return QFileInfo(path).filesystemFilePath();
}

/// Renames the finished file to @p path and replaces an existing file.
std::optional<NSError> renameOver(QTemporaryFile &file, const QString &path)
{
    // On some systems, the file has no name until fileName() is called.
    const QString temporaryPath = file.fileName();
    std::error_code error;
    std::filesystem::rename(nativePath(temporaryPath), nativePath(path), error);
    if (error)
        return writeError(NSFileWriteUnknownError, QString::fromLocal8Bit(error.message().c_str()));
    file.setAutoRemove(false);
    return std::nullopt;
}

} // namespace

Result<QUrl> QXTemporaryFile::write(const QDir &folder, const QString &fileName, const Writer &writer)
{
    if (!isEntryName(fileName))
        return writeError(NSFileWriteInvalidFileNameError,
                          QT_TRANSLATE_NOOP("Quorvix", "The file name is invalid."));
    // A missing temporary directory has an empty path, which QDir treats as the current folder.
    if (folder.isRelative() || !folder.exists())
        return writeError(NSFileWriteUnknownError, QT_TRANSLATE_NOOP("Quorvix", "The folder doesn't exist."));

    QTemporaryFile file(folder.absoluteFilePath(u".Quorvix-XXXXXX"_s));
    if (!file.open())
        return writeError(NSFileWriteNoPermissionError, file.errorString());
    if (const auto error = writer(file))
        return *error;
    if (!file.flush() || file.error() != QFileDevice::NoError)
        return writeError(NSFileWriteUnknownError, file.errorString());

    const QString path = folder.absoluteFilePath(fileName);
    if (const auto error = renameOver(file, path))
        return *error;
    return QUrl::fromLocalFile(path);
}

std::optional<NSError> QXTemporaryFile::replace(const QString &path, const Writer &writer)
{
    const bool isNew = !QFileInfo::exists(path);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return writeError(NSFileWriteNoPermissionError, file.errorString());
    if (isNew)
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (auto error = writer(file))
        return error;
    if (!file.commit())
        return writeError(NSFileWriteUnknownError, file.errorString());
    return std::nullopt;
}

Result<QUrl> QXTemporaryFile::writeText(const QString &relativePath, QByteArrayView utf8)
{
    return writeText(relativePath, [utf8](QIODevice &file) { return writeAll(file, utf8); });
}

Result<QUrl> QXTemporaryFile::writeText(const QString &relativePath, const Writer &writer)
{
    const QStringList names = relativePath.split(u'/', Qt::SkipEmptyParts);
    if (names.isEmpty() || relativePath.endsWith(u'/') ||
        !std::all_of(names.cbegin(), names.cend(), isEntryName))
        return writeError(NSFileWriteInvalidFileNameError,
                          QT_TRANSLATE_NOOP("Quorvix", "The file's path is invalid."));

    QDir folder = QDir::temp();
    if (folder.isRelative())
        return writeError(NSFileWriteUnknownError, QT_TRANSLATE_NOOP("Quorvix", "The folder doesn't exist."));
    for (const QString &name : QStringList(u"Quorvix"_s) + names.first(names.size() - 1)) {
        if (const auto error = enterSubfolder(folder, name))
            return *error;
    }
    return write(folder, names.last(), writer);
}
