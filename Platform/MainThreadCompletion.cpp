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
    : MainThreadCompletion(std::move(host), callHost)
{
}

MainThreadCompletion::MainThreadCompletion(DataTaskCompletionHandler host, Deliver deliver)
    : m_host(std::move(host)), m_deliver(std::move(deliver))
{
}

void MainThreadCompletion::operator()(std::optional<QByteArray> data, NSURLResponsePtr response,
                                      std::optional<NSError> error)
{
    MainActor::schedule([host = std::move(m_host), deliver = std::move(m_deliver), data = std::move(data),
                         response = std::move(response),
                         error = std::move(error)] { deliver(data, response, error, host.take()); });
}

} // namespace Quorvix
