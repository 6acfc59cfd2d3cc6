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

/// A list of numbers of 19 digits, with as many more before them as @p prefix has.
inline QByteArray numbers(const QByteArray &prefix, qsizetype size)
{
    QByteArray text = "[";
    text.reserve(size + 100);
    for (qint64 i = 0; text.size() < size; ++i)
        text += prefix + QByteArray::number(1'000'000'000'000'000'000 + i) + ',';
    text.back() = ']';
    return text;
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
