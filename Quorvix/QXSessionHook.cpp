#include "Quorvix/QXSessionHook.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXExchange.h"
#include "Quorvix/QXExitArchive.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Platform/MainActor.h"
#include "Platform/MainThreadCompletion.h"
#include "Platform/NSURLSession.h"
#include "Platform/ObjectRuntime.h"

#include <QtCore/QCoreApplication>

#include <mutex>

using namespace Quorvix;

namespace {

constexpr QByteArrayView hookedSelector{"qx_hookedDataTaskWith:completionHandler:"};

/// The method of hookedSelector. It is our own before the exchange and the platform's after it.
std::atomic<const Method *> hookedMethod = nullptr;

/// One captured exchange: first the task that records its start, then the one that reports its end.
class Exchange final : public MainThreadCompletion::Delivery
{
public:
    Exchange(const URLRequest &request, DataTaskCompletionHandler host)
        : Delivery(std::move(host)), m_request(request), m_start(*this)
    {
    }

    /// The task that records the start. It shares the life of the exchange.
    static MailboxTaskPtr start(const std::shared_ptr<Exchange> &exchange)
    {
        return {exchange, &exchange->m_start};
    }

private:
    class Start final : public MailboxTask
    {
    public:
        explicit Start(const Exchange &exchange) : m_exchange(exchange) {}

        void run() override
        {
            QXRequestRecorder::shared().record(m_exchange.m_identifier, m_exchange.m_request);
        }
        bool report() override
        {
            run();
            return true;
        }

    private:
        const Exchange &m_exchange;
    };

    /// Reports to the breakpoint center, the recorder and the host, in this order.
    void deliver(const DataTaskCompletionHandler &host) override
    {
        const auto &[data, response, error] = outcome();
        if (QXBreakpointCenter::shared().check(m_request, m_identifier, data, response, error, host))
            return;
        QXRequestRecorder::shared().complete(m_identifier, response, data, error);
        if (host)
            host(data, response, error);
    }

    bool report() override
    {
        QXRequestRecorder::shared().complete(m_identifier, outcome().response, outcome().data,
                                             outcome().error);
        return true;
    }

    const QString m_identifier = QXExchange::makeId();
    const URLRequest m_request;
    Start m_start;
};

/// Replaces the session's data-task method. It runs on the host's thread, so it only schedules work on the
/// main thread.
NSURLSessionDataTaskPtr hookedDataTask(NSURLSession &session, const URLRequest &request,
                                       DataTaskCompletionHandler completion)
{
    auto exchange = std::make_shared<Exchange>(request, std::move(completion));
    MainActor::post(Exchange::start(exchange));
    auto *const original = NSURLSession::objectClass().implementation<NSURLSession::DataTaskImplementation>(
        hookedMethod.load(std::memory_order_acquire));
    return original(session, request, MainThreadCompletion(std::move(exchange)));
}

/// What the handlers of the host have captured must not outlive the application. Those of held responses go
/// first, because their destructors can make tasks.
void destroyHandlers()
{
    QXBreakpointCenter::shared().dropAll();
    HostCompletion::destroyAll();
}

void followApplication()
{
    qAddPostRoutine(destroyHandlers);
    if (QXExitArchive::begin())
        QXSessionHook::install();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

void QXSessionHook::exchange(ObjectClass &sessionClass)
{
    Method *const original = class_getInstanceMethod(sessionClass, NSURLSession::dataTaskSelector);
    if (!original || hookedMethod.load())
        return;
    sessionClass.addMethod<NSURLSession::DataTaskImplementation>(hookedSelector, &hookedDataTask);
    Method *const hooked = class_getInstanceMethod(sessionClass, hookedSelector);
    if (!hooked)
        return;
    hookedMethod.store(hooked, std::memory_order_release);
    method_exchangeImplementations(original, hooked);
}

void QXSessionHook::install()
{
    static std::once_flag once;
    std::call_once(once, [] { exchange(NSURLSession::objectClass()); });
}
