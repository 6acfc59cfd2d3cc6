#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>

namespace ProcessStatus {

/// A field of /proc/self/status, such as "VmRSS", in bytes; 0 if it is not known.
inline qsizetype field(QByteArrayView name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QFile::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(name))
            return line.mid(name.size() + 1).simplified().split(' ').constFirst().toLongLong() * 1024;
    }
    return 0;
}

/// From here on "VmHWM" is the most memory that is in use since now.
inline void forgetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QFile::WriteOnly))
        file.write("5");
}

} // namespace ProcessStatus
