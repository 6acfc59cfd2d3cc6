#include "Quorvix/QXReplyBody.h"

#include <QtNetwork/QNetworkReply>

#include <algorithm>
#include <cstring>

namespace {

/// A server can announce any length, so no more than this is reserved before the bytes arrive.
constexpr qint64 largestReservation = 64'000'000;

} // namespace

std::optional<QByteArray> QXReplyBody::bytes() const
{
    return m_isDiscarded ? std::nullopt : std::optional(m_bytes);
}

std::optional<qsizetype> QXReplyBody::discardedSize() const
{
    return m_isDiscarded ? std::optional(m_taken) : std::nullopt;
}

void QXReplyBody::noteTaken(const QNetworkReply &inner, qsizetype size, std::optional<qsizetype> limit)
{
    m_taken += size;
    if (limit && m_taken > *limit && inner.isSequential())
        m_isDiscarded = true;
    if (m_isDiscarded)
        forgetRead();
}

/// Releases the bytes that the host has read, when they are at least as many as those that have to move for
/// it: so the work does not grow with the number of reads.
void QXReplyBody::forgetRead()
{
    if (m_position == 0 || m_position < unread())
        return;
    m_bytes = m_bytes.sliced(m_position);
    m_position = 0;
}

void QXReplyBody::drain(QNetworkReply &inner, std::optional<qsizetype> limit)
{
    if (!inner.isOpen())
        return;
    for (qint64 size = inner.bytesAvailable(); size > 0; size = inner.bytesAvailable()) {
        if (m_bytes.isEmpty()) {
            // Not copied if the reply has these bytes in one piece.
            m_bytes = inner.read(size);
            const qint64 length = inner.header(QNetworkRequest::ContentLengthHeader).toLongLong();
            if (m_bytes.isEmpty())
                return;
            noteTaken(inner, m_bytes.size(), limit);
            if (length > m_bytes.size() && !m_isDiscarded && (!limit || length <= *limit))
                m_bytes.reserve(std::min(length, largestReservation));
            continue;
        }
        const qsizetype before = m_bytes.size();
        m_bytes.resize(before + size);
        const qint64 read = inner.read(m_bytes.data() + before, size);
        m_bytes.resize(before + std::max<qint64>(read, 0));
        if (read <= 0)
            return;
        noteTaken(inner, read, limit);
    }
}

qint64 QXReplyBody::read(QNetworkReply *inner, char *data, qint64 maxSize, std::optional<qsizetype> limit)
{
    if (unread() > 0) {
        const qint64 size = std::min(unread(), maxSize);
        // A host that reads no bytes need not have a place for them.
        if (size > 0)
            std::memcpy(data, m_bytes.constData() + m_position, std::size_t(size));
        m_position += size;
        if (m_isDiscarded)
            forgetRead();
        return size;
    }
    if (!inner)
        return -1;
    // The inner reply lets the server go on when it is asked for more than it has: not before the host is.
    const qint64 available = inner->bytesAvailable();
    const qint64 size = inner->read(data, available > 0 ? std::min(available, maxSize) : maxSize);
    if (size > 0) {
        if (!m_isDiscarded) {
            m_bytes.append(data, size);
            m_position += size;
        }
        noteTaken(*inner, size, limit);
    }
    return size;
}

void QXReplyBody::seek(qint64 position)
{
    m_position = std::clamp<qint64>(position, 0, m_bytes.size());
}

void QXReplyBody::replace(const QByteArray &bytes)
{
    m_bytes = bytes;
    m_position = 0;
    m_taken = bytes.size();
    m_isDiscarded = false;
}

void QXReplyBody::squeeze()
{
    constexpr qsizetype page = 4096;
    if (m_bytes.capacity() > m_bytes.size() + std::min(page, m_bytes.size() / 8))
        m_bytes.squeeze();
}
