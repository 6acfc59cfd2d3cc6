#pragma once

#include <QtCore/QByteArray>

#include <optional>

class QNetworkReply;

/// The body of a reply: all bytes that were taken from the inner reply, and how many of them the host has
/// read. The host reads from the bytes that the inspector keeps. In the reply's thread only.
///
/// A body that becomes larger than a limit is discarded: from then on only the bytes are kept that the host
/// has not read. A reply with random access is never discarded, because the host may go back in it.
class QXReplyBody final
{
public:
    /// Takes all bytes that @p inner has. @p limit is the largest body that is kept, in bytes.
    void drain(QNetworkReply &inner, std::optional<qsizetype> limit);
    /// Hands bytes on to the host: those that are kept here first, then those of @p inner, which may be null.
    /// Returns what QIODevice::read() returns.
    qint64 read(QNetworkReply *inner, char *data, qint64 maxSize, std::optional<qsizetype> limit);

    /// How many of the bytes that are kept here the host has not read.
    [[nodiscard]] qint64 unread() const { return m_bytes.size() - m_position; }
    /// Whether a line ends in them.
    [[nodiscard]] bool hasLine() const { return m_bytes.indexOf('\n', m_position) >= 0; }
    /// Goes to the byte that the host gets next: for replies with random access.
    void seek(qint64 position);
    /// Lets the host get nothing of them any more.
    void loseUnread() { m_position = m_bytes.size(); }
    /// Lets the host get @p bytes instead.
    void replace(const QByteArray &bytes);

    /// All bytes that were taken, whether or not the host has read them; absent if they were discarded.
    [[nodiscard]] std::optional<QByteArray> bytes() const;
    /// How many bytes were taken, whether or not they are kept.
    [[nodiscard]] qsizetype takenSize() const { return m_taken; }
    /// How many bytes a body has that was discarded, so far; absent if it was not.
    [[nodiscard]] std::optional<qsizetype> discardedSize() const;
    /// Gives the memory back that a growing buffer has too much.
    void squeeze();

private:
    void noteTaken(const QNetworkReply &inner, qsizetype size, std::optional<qsizetype> limit);
    void forgetRead();

    QByteArray m_bytes;
    /// The place in m_bytes of the byte that the host gets next.
    qsizetype m_position = 0;
    qsizetype m_taken = 0;
    bool m_isDiscarded = false;
};
