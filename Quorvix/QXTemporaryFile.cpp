#include "Quorvix/QXTemporaryFile.h"

#include "Platform/Localized.h"
#include "Platform/TemporaryDirectory.h"
#include "Platform/WriteAll.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <algorithm>
#include <utility>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

NSError invalidName(const char *message)
{
    return {NSCocoaErrorDomain, NSFileWriteInvalidFileNameError, localized(message)};
}

/// Whether the name is the name of an entry in a folder, on every supported file system.
bool isEntryName(QStringView name)
{
    return !name.isEmpty() && name != "."_L1 && name != ".."_L1 && !name.contains(u'/') &&
           !name.contains(u'\\') && !name.contains(QChar::Null);
}

Result<QUrl> writeTo(const Result<OpenFolder> &folder, const QString &fileName, const FileWriter &writer)
{
    if (!folder)
        return folder.error();
    if (auto error = folder.value().write(fileName, writer))
        return std::move(*error);
    return QUrl::fromLocalFile(folder.value().pathOf(fileName));
}

} // namespace

Result<QUrl> QXTemporaryFile::write(const QString &fileName, const FileWriter &writer)
{
    if (!isEntryName(fileName))
        return invalidName(QT_TRANSLATE_NOOP("Quorvix", "The file name is invalid."));
    return writeTo(temporaryDirectory(), fileName, writer);
}

Result<QUrl> QXTemporaryFile::writeText(const QString &relativePath, QByteArrayView utf8)
{
    return writeText(relativePath, [utf8](QIODevice &file) { return writeAll(file, utf8); });
}

Result<QUrl> QXTemporaryFile::writeText(const QString &relativePath, const FileWriter &writer)
{
    const QStringList names = relativePath.split(u'/', Qt::SkipEmptyParts);
    if (names.isEmpty() || relativePath.endsWith(u'/') ||
        !std::all_of(names.cbegin(), names.cend(), isEntryName))
        return invalidName(QT_TRANSLATE_NOOP("Quorvix", "The file's path is invalid."));

    auto folder = temporaryDirectory();
    for (const QString &name : QStringList(u"Quorvix"_s) + names.first(names.size() - 1)) {
        if (folder)
            folder = folder.value().subfolder(name);
    }
    return writeTo(folder, names.last(), writer);
}

void QXTemporaryFile::remove(const QUrl &file)
{
    QFile::remove(file.toLocalFile());
}
