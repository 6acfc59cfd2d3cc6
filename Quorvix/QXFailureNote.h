#pragma once

#include "Platform/NSError.h"
#include "Platform/PlatformGlobal.h"

#include <QtCore/QHashFunctions>

/// The transport error that an exchange ended with. A value; compares and hashes over all its fields.
struct QXFailureNote
{
    QXFailureNote() = default;
    /// Copies @p error.
    explicit QXFailureNote(const Quorvix::NSError &error)
        : localizedDescription(error.localizedDescription), domain(error.domain), code(error.code)
    {
    }

    /// A sentence for people.
    QString localizedDescription;
    /// Where the code has its meaning, for example NSURLErrorDomain.
    QString domain;
    /// The error's number in its domain.
    qint64 code = 0;

    /// Compares all fields.
    bool operator==(const QXFailureNote &) const = default;
};

/// Over all fields.
[[nodiscard]] inline size_t qHash(const QXFailureNote &note, size_t seed = 0)
{
    return qHashMulti(seed, note.localizedDescription, note.domain, note.code);
}
