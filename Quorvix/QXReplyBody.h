#pragma once

#include <QtCore/QByteArray>

class QNetworkReply;

/// The body of a reply: all bytes that were taken from the inner reply, and how many of them the host has
/// read. The host reads from the bytes that the inspector keeps. In the reply's thread only.
class QXReplyBody final
{
public:
    /// Takes all bytes that @p inner has.
    void drain(QNetworkReply &inner);
    /// Hands bytes on to the host: those that are kept here first, then those of @p inner, which may be null.
    /// Returns what QIODevice::read() returns.
    qint64 read(QNetworkReply *inner, char *data, qint64 maxSize);

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

    /// All bytes that were taken, whether or not the host has read them.
    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }
    /// Gives the memory back that a growing buffer has too much.
    void squeeze();

private:
    QByteArray m_bytes;
    qsizetype m_position = 0;
};
