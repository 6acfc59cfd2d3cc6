#pragma once

#include "Quorvix/QXApiTreeField.h"

#include <QtCore/QByteArray>
#include <QtCore/QRandomGenerator>

/// Test data for several programs.
namespace Samples {

/// Random bytes, the same in every run.
inline QByteArray binaryBytes(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(42);
    for (char &byte : bytes)
        byte = char(generator.bounded(256));
    return bytes;
}

/// The number of nodes in the tree from @p field down, @p field included.
inline size_t countNodes(const QXApiTreeField &field)
{
    size_t count = 1;
    for (const QXApiTreeField &child : field.children())
        count += countNodes(child);
    return count;
}

} // namespace Samples
