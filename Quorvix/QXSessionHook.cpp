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

/// Reports the end of an exchange to the breakpoint center, the recorder and the host, in this order. Main
/// thread.
void finish(const URLRequest &request, const QString &identifier, const std::optional<QByteArray> &data,
            const NSURLResponsePtr &response, const std::optional<NSError> &error,
            const DataTaskCompletionHandler &completion)
{
    if (QXBreakpointCenter::shared().check(request, identifier, data, response, error, completion))
        return;
    QXRequestRecorder::shared().complete(identifier, response, data, error);
    if (completion)
        completion(data, response, error);
}

/// Replaces the session's data-task method. It runs on the host's thread, so it only schedules work on the
/// main thread.
NSURLSessionDataTaskPtr hookedDataTask(NSURLSession &session, const URLRequest &request,
                                       DataTaskCompletionHandler completion)
{
    const QString identifier = QXExchange::makeId();
    MainActor::scheduleReport(
        [identifier, request] { QXRequestRecorder::shared().record(identifier, request); });

    auto deliver = [request, identifier](const auto &data, const auto &response, const auto &error,
                                         const auto &host) {
        finish(request, identifier, data, response, error, host);
    };
    auto report = [identifier](const auto &data, const auto &response, const auto &error) {
        QXRequestRecorder::shared().complete(identifier, response, data, error);
    };
    MainThreadCompletion wrapper(std::move(completion), std::move(deliver), std::move(report));
    auto *const original = NSURLSession::objectClass().implementation<NSURLSession::DataTaskImplementation>(
        hookedMethod.load(std::memory_order_acquire));
    return original(session, request, std::move(wrapper));
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
