#pragma once

#include <QtCore/QHash>

#include <algorithm>
#include <mutex>

class QNetworkReply;
class QXNetworkReply;

/// The inner replies and those that wrap them, while they exist. Any thread.
class QXReplyRegistry final
{
public:
    /// The only registry; created on first use, lives until the process ends.
    [[nodiscard]] static QXReplyRegistry &shared();

    void insert(const QNetworkReply *inner, QXNetworkReply *outer);
    /// If the inner reply was deleted by someone else, a new one can have its address.
    void remove(const QNetworkReply *inner, const QXNetworkReply *outer);
    /// Null if nothing wraps @p inner.
    [[nodiscard]] QXNetworkReply *outerOf(const QNetworkReply *inner);

    /// Calls @p visit with the first outer reply for which @p matches is true. No reply can be removed
    /// meanwhile. Returns whether there is one.
    template<typename Matches, typename Visit>
    bool visit(Matches matches, Visit visit)
    {
        const std::scoped_lock lock(m_mutex);
        const auto found = std::find_if(m_outer.cbegin(), m_outer.cend(), matches);
        if (found == m_outer.cend())
            return false;
        visit(*found);
        return true;
    }

private:
    std::mutex m_mutex;
    QHash<const QNetworkReply *, QXNetworkReply *> m_outer;
};
