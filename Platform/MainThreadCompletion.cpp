#include "Platform/MainThreadCompletion.h"

#include "Platform/MainActor.h"

#include <utility>

namespace Quorvix {

namespace {

void callHost(const std::optional<QByteArray> &data, const NSURLResponsePtr &response,
              const std::optional<NSError> &error, const DataTaskCompletionHandler &host)
{
    if (host)
        host(data, response, error);
}

} // namespace

MainThreadCompletion::MainThreadCompletion(DataTaskCompletionHandler host)
    : MainThreadCompletion(std::move(host), callHost, nullptr)
{
}

MainThreadCompletion::MainThreadCompletion(DataTaskCompletionHandler host, Deliver deliver, Report report)
    : m_host(std::move(host)), m_deliver(std::move(deliver)), m_report(std::move(report))
{
}

void MainThreadCompletion::operator()(std::optional<QByteArray> data, NSURLResponsePtr response,
                                      std::optional<NSError> error)
{
    std::function<void()> report;
    if (m_report)
        report = [report = std::move(m_report), data, response, error] {
            report(data, response, error);
        };
    auto task = [host = std::move(m_host), deliver = std::move(m_deliver), data = std::move(data),
                 response = std::move(response), error = std::move(error)] {
        deliver(data, response, error, host.take());
    };
    if (report)
        MainActor::scheduleReport(std::move(task), std::move(report));
    else
        MainActor::schedule(std::move(task));
}

} // namespace Quorvix
