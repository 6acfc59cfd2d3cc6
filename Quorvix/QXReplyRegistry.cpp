#include "Quorvix/QXReplyRegistry.h"

QXReplyRegistry &QXReplyRegistry::shared()
{
    static auto *const registry = new QXReplyRegistry;
    return *registry;
}

void QXReplyRegistry::insert(const QNetworkReply *inner, QXNetworkReply *outer)
{
    const std::scoped_lock lock(m_mutex);
    m_outer.insert(inner, outer);
}

void QXReplyRegistry::remove(const QNetworkReply *inner, const QXNetworkReply *outer)
{
    const std::scoped_lock lock(m_mutex);
    if (m_outer.value(inner) == outer)
        m_outer.remove(inner);
}

QXNetworkReply *QXReplyRegistry::outerOf(const QNetworkReply *inner)
{
    const std::scoped_lock lock(m_mutex);
    return m_outer.value(inner);
}
