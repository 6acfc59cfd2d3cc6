#pragma once

#include "Platform/NSError.h"
#include "Platform/PlatformGlobal.h"

#include <QtCore/QHashFunctions>

/// The transport error that an exchange ended with. A value; compares and hashes over all its fields.
struct QXFailureNote
{
    QXFailureNote() = default;
    explicit QXFailureNote(const Quorvix::NSError &error)
        : localizedDescription(error.localizedDescription), domain(error.domain), code(error.code)
    {
    }

    QString localizedDescription;
    QString domain;
    qint64 code = 0;

    bool operator==(const QXFailureNote &) const = default;
};

[[nodiscard]] inline size_t qHash(const QXFailureNote &note, size_t seed = 0)
{
    return qHashMulti(seed, note.localizedDescription, note.domain, note.code);
}
