#pragma once

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTranslator>

inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

/// Replaces the temporary directory of the process while this object exists. It is two folders deep in an
/// otherwise empty folder, so that a test sees a file that is written outside of it.
class TemporaryFolder final
{
public:
    TemporaryFolder()
        : m_former(qgetenv("TMPDIR")), m_folder(m_surroundings.filePath(QStringLiteral("a/tmp")))
    {
        // A folder in which others can write would not be used as it is.
        constexpr auto owner = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
        if (m_folder.mkpath(QStringLiteral(".")) && QFile::setPermissions(m_folder.path(), owner))
            qputenv("TMPDIR", QFile::encodeName(m_folder.path()));
    }
    ~TemporaryFolder() { qputenv("TMPDIR", m_former); }
    Q_DISABLE_COPY_MOVE(TemporaryFolder)

    [[nodiscard]] bool isInForce() const { return QDir::tempPath() == m_folder.path(); }
    [[nodiscard]] const QDir &dir() const { return m_folder; }
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }

    /// The files in the folder as "name=content", and all files around it.
    [[nodiscard]] QStringList files() const
    {
        QStringList files;
        QDirIterator it(m_surroundings.path(),
                        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            const QString name = m_folder.relativeFilePath(path);
            if (!it.fileInfo().isDir())
                files += name + u'=' + QString::fromUtf8(contentOf(path));
            else if (name.startsWith(u'.') && !m_folder.path().startsWith(path))
                files += name;
        }
        files.sort();
        return files;
    }

private:
    QByteArray m_former;
    QTemporaryDir m_surroundings;
    QDir m_folder;
};

/// Translates every text to the same text in capitals.
class ShoutingTranslator final : public QTranslator
{
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char *context, const char *source, const char *, int) const override
    {
        return qstrcmp(context, "Quorvix") == 0 ? QString::fromLatin1(source).toUpper() : QString();
    }
};
