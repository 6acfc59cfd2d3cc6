#pragma once

#include "Tests/ReplyDiary.h"
#include "Tests/ScriptedServer.h"

#include <QtCore/QTemporaryDir>

/// A host with a manager, a server for it, and the diary of what the host sees. It belongs to the thread that
/// makes it.
class NetworkStage final
{
public:
    using Condition = std::function<bool()>;
    /// What a host does with a manager.
    using Play = std::function<void(NetworkStage &)>;
    using Act = std::function<void(NetworkStage &, QNetworkReply *)>;

    NetworkStage(QNetworkAccessManager *manager, ScriptedServer::Transport transport);

    /// Runs the play to the end of all replies; returns what the host saw.
    static QByteArrayList perform(QNetworkAccessManager *manager, const Play &play,
                                  ScriptedServer::Transport transport = ScriptedServer::Transport::Plain);

    [[nodiscard]] QNetworkRequest request(const QString &path = QStringLiteral("/")) const
    {
        return QNetworkRequest(server.url(path));
    }
    QNetworkReply *watch(QNetworkReply *reply)
    {
        diary.watch(reply);
        return reply;
    }
    QNetworkReply *get(const QNetworkRequest &request) { return watch(manager->get(request)); }
    QNetworkReply *get(const QString &path = QStringLiteral("/")) { return get(request(path)); }
    /// Does something the first time, or each time, that a signal comes.
    void on(const QByteArray &signal, const Act &act);
    void each(const QByteArray &signal, const Act &act);
    /// What is done at a signal so far; may be null.
    [[nodiscard]] Act act(const QByteArray &signal) const { return m_acts.value(signal); }
    /// Runs an event loop until the condition holds; writes a complaint when it does not come true.
    void until(const Condition &condition);
    void finish()
    {
        until([this] { return diary.isComplete(); });
    }

    ScriptedServer server;
    QTemporaryDir folder;
    QPointer<QNetworkAccessManager> manager;
    ReplyDiary diary;
    /// Whether the replies of the play have no common order; then each has its own.
    bool isParallel = false;

private:
    void end();

    QHash<QByteArray, Act> m_acts;
};
