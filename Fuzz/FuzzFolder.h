#pragma once

#include "FuzzCheck.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <map>

/// The process's temporary directory, empty before each input.
class FuzzFolder
{
public:
    /// Made on first use, which has to come before the first file.
    static FuzzFolder &instance()
    {
        static FuzzFolder folder;
        return folder;
    }

    [[nodiscard]] QString path(const QString &relative) const { return m_folder.filePath(relative); }

    /// The contents of all files by relative path. Removes the files and their folders.
    std::map<QString, QByteArray> takeFiles()
    {
        std::map<QString, QByteArray> files;
        const QDir root(m_folder.path());
        QDirIterator it(root.path(), QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            QFile file(it.next());
            check(file.open(QIODevice::ReadOnly), "a file is its owner's");
            files.emplace(root.relativeFilePath(file.fileName()), file.readAll());
        }
        for (const QString &entry : root.entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot))
            QDir(root.filePath(entry)).removeRecursively();
        for (const auto &[name, content] : files)
            QFile::remove(root.filePath(name));
        return files;
    }

private:
    FuzzFolder()
    {
        check(m_folder.isValid(), "there is a temporary folder");
        qputenv("TMPDIR", QFile::encodeName(m_folder.path()));
    }

    /// In memory, where the system has such a folder.
    QTemporaryDir m_folder{
        (QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm") : QDir::tempPath()) +
        QStringLiteral("/fuzz-XXXXXX")};
};
