#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QList>

#include <utility>

/// The parts of an input, which NUL bytes separate, so that seeds are texts.
class FuzzParts
{
public:
    explicit FuzzParts(QByteArrayView input) : m_rest(input.toByteArray()) {}

    /// Removes the next part and returns it; empty at the end.
    QByteArray take()
    {
        const qsizetype end = m_rest.indexOf('\0');
        QByteArray part = m_rest.first(end < 0 ? m_rest.size() : end);
        m_rest.remove(0, end < 0 ? m_rest.size() : end + 1);
        return part;
    }

    /// The next part's lines, each split at its first ": ".
    QList<std::pair<QByteArray, QByteArray>> takeFields()
    {
        QList<std::pair<QByteArray, QByteArray>> fields;
        for (const QByteArray &line : take().split('\n')) {
            if (const qsizetype colon = line.indexOf(": "); colon >= 0)
                fields.append({line.first(colon), line.sliced(colon + 2)});
        }
        return fields;
    }

    /// Everything that is left, NUL bytes included.
    QByteArray takeRest() { return std::exchange(m_rest, {}); }

private:
    QByteArray m_rest;
};
