#pragma once

#include "Quorvix/QXApiTreeField.h"

#include <QtCore/QByteArray>
#include <QtCore/QRandomGenerator>

/// What several programs measure with.
namespace Samples {

/// Bytes at random, the same ones each time.
inline QByteArray binaryBytes(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(42);
    for (char &byte : bytes)
        byte = char(generator.bounded(256));
    return bytes;
}

/// The node and all below it.
inline size_t countNodes(const QXApiTreeField &field)
{
    size_t count = 1;
    for (const QXApiTreeField &child : field.children())
        count += countNodes(child);
    return count;
}

} // namespace Samples
