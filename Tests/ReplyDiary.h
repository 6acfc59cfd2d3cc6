#pragma once

#include <QtCore/QDebug>
#include <QtCore/QHash>
#include <QtCore/QPointer>
#include <QtNetwork/QNetworkReply>

#include <functional>
#include <vector>

/// Writes down, line by line, what a host can see of a manager and its replies. It lives on their thread.
///
/// Only what is the same in each run is written. Qt counts time between its reports of progress, so those
/// before the end are only checked for their order. How many connections Qt needs, and what its own thread
/// still reports of them after an abort or for a later reply, is a matter of luck; only those of the first
/// reply are written.
class ReplyDiary final : public QObject
{
    Q_OBJECT

public:
    /// Called after a signal has been written. The reply is null for signals that do not name a reply.
    using Reaction = std::function<void(const QByteArray &signal, QNetworkReply *reply)>;

    explicit ReplyDiary(QNetworkAccessManager &manager);

    /// Gives the reply the name "reply1", "reply2" and so on, and writes its state and its signals from now
    /// on.
    void watch(QNetworkReply *reply);
    void react(Reaction reaction) { m_reaction = std::move(reaction); }
    /// Writes a series of readyRead() as one, without the bytes at hand, because a large body has no fixed
    /// parts.
    void flow() { m_flows = true; }
    /// Writes all progress of downloads.
    void keepProgress() { m_keepsProgress = true; }

    void write(const QByteArray &line);
    template<typename... Values>
    void note(const char *what, const Values &...values)
    {
        write(what + (QByteArray() + ... + (' ' + text(values))));
    }
    /// Writes everything that can be asked of a reply.
    void describe(const QNetworkReply &reply);

    [[nodiscard]] const QByteArrayList &lines() const noexcept { return m_lines; }
    [[nodiscard]] const std::vector<QPointer<QNetworkReply>> &replies() const noexcept { return m_replies; }
    /// Whether every reply has finished or is no more.
    [[nodiscard]] bool isComplete() const;

Q_SIGNALS:
    void written();

private:
    template<typename T>
    [[nodiscard]] static QByteArray text(const T &value)
    {
        QString text;
        QDebug(&text).nospace() << value;
        return text.toUtf8();
    }
    [[nodiscard]] static QByteArray text(const QByteArray &bytes) { return bytes; }
    [[nodiscard]] static QByteArray text(const char *words) { return words; }
    [[nodiscard]] static QByteArray text(QAuthenticator *authenticator);
    [[nodiscard]] static QByteArray text(const QNetworkRequest &request);
    [[nodiscard]] static QByteArray text(const QSslConfiguration &configuration);
    [[nodiscard]] QByteArray text(QNetworkReply *reply) const;
    [[nodiscard]] QByteArray state(const QNetworkReply *reply) const;
    template<typename Sender, typename... Arguments>
    void hear(Sender *sender, const char *name, void (Sender::*signal)(Arguments...));
    [[nodiscard]] bool isLucky(const QByteArray &signal, QNetworkReply *reply);
    /// Whether progress is written; progress that goes back is written too.
    [[nodiscard]] bool isWritten(const QByteArray &signal, QNetworkReply *reply, qint64 done, qint64 total);

    QNetworkAccessManager &m_manager;
    QByteArrayList m_lines;
    std::vector<QPointer<QNetworkReply>> m_replies;
    Reaction m_reaction;
    QHash<QByteArray, qint64> m_progress;
    bool m_isConnecting = false;
    bool m_isSent = false;
    bool m_flows = false;
    bool m_keepsProgress = false;
};
