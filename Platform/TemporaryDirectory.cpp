#include "Platform/TemporaryDirectory.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QHash>
#include <QtCore/QRandomGenerator>

#include <mutex>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace Quorvix {

namespace {

QString usualName()
{
#ifdef Q_OS_UNIX
    return QStringLiteral("quorvix-%1").arg(::geteuid());
#else
    return QStringLiteral("quorvix");
#endif
}

/// The names of this process's folders in shared folders, by the path of the shared one. They are kept, so
/// that not every export makes a folder where the usual name is taken.
struct KnownNames
{
    static KnownNames &instance()
    {
        static auto *const names = new KnownNames;
        return *names;
    }

    std::mutex mutex;
    QHash<QString, QString> names;
};

Result<OpenFolder> privateFolderIn(const OpenFolder &shared)
{
    KnownNames &known = KnownNames::instance();
    const std::scoped_lock lock(known.mutex);
    QString &name = known.names[shared.path()];
    for (const QString &candidate : {name, usualName()}) {
        if (candidate.isEmpty())
            continue;
        auto folder = shared.subfolder(candidate);
        if (folder && folder.value().isPrivate())
            return folder;
    }
    // Nobody can have taken a name that nobody can guess.
    name = usualName() + u'-' + QString::number(QRandomGenerator::system()->generate64(), 36);
    auto folder = shared.subfolder(name);
    if (folder && !folder.value().isPrivate())
        return NSError{NSCocoaErrorDomain, NSFileWriteUnknownError,
                       QCoreApplication::translate("Quorvix", "The folder could not be created.")};
    return folder;
}

} // namespace

Result<OpenFolder> temporaryDirectory()
{
    // A missing temporary directory has an empty path, which means the current folder.
    const QString path = QDir::tempPath();
    auto folder = OpenFolder::at(QDir::isAbsolutePath(path) ? path : QString());
    if (!folder || !folder.value().isShared())
        return folder;
    return privateFolderIn(folder.value());
}

} // namespace Quorvix
