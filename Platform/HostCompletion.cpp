#include "Platform/HostCompletion.h"

#include "Platform/MainActor.h"

#include <QtCore/QCoreApplication>

#include <mutex>
#include <unordered_map>

namespace Quorvix {

namespace {

/// Owns all handlers. It never destroys one while it holds its lock, because the destructors of a host can
/// make or drop tasks.
class Registry
{
public:
    using Number = quint64;

    static Registry &instance()
    {
        static auto *const registry = new Registry;
        return *registry;
    }

    Number add(DataTaskCompletionHandler handler)
    {
        const std::scoped_lock lock(m_mutex);
        m_handlers.emplace(++m_last, std::move(handler));
        return m_last;
    }

    DataTaskCompletionHandler take(Number number)
    {
        const std::scoped_lock lock(m_mutex);
        auto found = m_handlers.extract(number);
        return found ? std::move(found.mapped()) : nullptr;
    }

    void clear()
    {
        Handlers removed;
        const std::scoped_lock lock(m_mutex);
        removed.swap(m_handlers);
    }

private:
    using Handlers = std::unordered_map<Number, DataTaskCompletionHandler>;

    std::mutex m_mutex;
    Handlers m_handlers;
    Number m_last = 0;
};

void destroy(Registry::Number number)
{
    const auto handler = Registry::instance().take(number);
}

/// What the handlers have captured must not outlive the application.
void followApplication()
{
    qAddPostRoutine(&HostCompletion::destroyAll);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

struct HostCompletion::Ticket
{
    explicit Ticket(Registry::Number ticketNumber) : number(ticketNumber) {}
    Q_DISABLE_COPY_MOVE(Ticket)
    ~Ticket()
    {
        if (MainActor::isCurrent())
            destroy(number);
        else
            MainActor::schedule([number = number] { destroy(number); });
    }

    const Registry::Number number;
};

HostCompletion::HostCompletion(DataTaskCompletionHandler handler)
    : m_ticket(std::make_shared<const Ticket>(Registry::instance().add(std::move(handler))))
{
}

DataTaskCompletionHandler HostCompletion::take() const
{
    Q_ASSERT(MainActor::isCurrent());
    return m_ticket ? Registry::instance().take(m_ticket->number) : nullptr;
}

void HostCompletion::destroyAll()
{
    Registry::instance().clear();
}

} // namespace Quorvix
