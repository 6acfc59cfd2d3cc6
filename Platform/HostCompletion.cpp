#include "Platform/HostCompletion.h"

#include "Platform/MainActor.h"

#include <QtCore/QCoreApplication>

#include <mutex>
#include <utility>
#include <vector>

namespace Quorvix {

namespace {

/// What the handlers have captured must not outlive the application.
void followApplication()
{
    qAddPostRoutine(&HostCompletion::destroyAll);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

/// All objects that have a handler, newest first. No handler is destroyed while the lock is held, because the
/// destructors of a host can make or drop tasks.
struct HostCompletion::Handlers
{
    static Handlers &instance()
    {
        static auto *const handlers = new Handlers;
        return *handlers;
    }

    std::mutex mutex;
    HostCompletion *first = nullptr;
};

HostCompletion::HostCompletion(DataTaskCompletionHandler handler)
{
    if (!handler)
        return;
    m_handler = std::move(handler);
    Handlers &handlers = Handlers::instance();
    const std::scoped_lock lock(handlers.mutex);
    m_next = std::exchange(handlers.first, this);
    if (m_next)
        m_next->m_previous = this;
}

HostCompletion::~HostCompletion()
{
    DataTaskCompletionHandler handler = withdraw();
    if (handler && !MainActor::isCurrent())
        MainActor::schedule([handler = std::move(handler)] {});
}

/// Takes the handler from the list.
DataTaskCompletionHandler HostCompletion::withdraw()
{
    Handlers &handlers = Handlers::instance();
    const std::scoped_lock lock(handlers.mutex);
    if (!m_handler)
        return nullptr;
    (m_previous ? m_previous->m_next : handlers.first) = m_next;
    if (m_next)
        m_next->m_previous = m_previous;
    return std::exchange(m_handler, nullptr);
}

DataTaskCompletionHandler HostCompletion::take()
{
    Q_ASSERT(MainActor::isCurrent());
    return withdraw();
}

void HostCompletion::destroyAll()
{
    std::vector<DataTaskCompletionHandler> removed;
    Handlers &handlers = Handlers::instance();
    const std::scoped_lock lock(handlers.mutex);
    for (HostCompletion *entry = std::exchange(handlers.first, nullptr); entry; entry = entry->m_next)
        removed.push_back(std::exchange(entry->m_handler, nullptr));
}

} // namespace Quorvix
