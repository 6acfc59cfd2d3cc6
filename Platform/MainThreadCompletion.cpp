#include "Platform/MainThreadCompletion.h"

#include "Platform/LoadingThread.h"

#include <utility>

namespace Quorvix {

void MainThreadCompletion::Delivery::deliver(const DataTaskCompletionHandler &host)
{
    if (host)
        host(m_outcome.data, m_outcome.response, m_outcome.error);
}

MainThreadCompletion::MainThreadCompletion(DataTaskCompletionHandler host)
    : MainThreadCompletion(std::make_shared<Delivery>(std::move(host)))
{
}

MainThreadCompletion::MainThreadCompletion(std::shared_ptr<Delivery> delivery)
    : m_delivery(std::move(delivery))
{
}

void MainThreadCompletion::operator()(std::optional<QByteArray> data, NSURLResponsePtr response,
                                      std::optional<NSError> error)
{
    m_delivery->m_outcome = {std::move(data), std::move(response), std::move(error)};
    // Moved, so that the last owner of what the host has captured is on the main thread.
    LoadingThread::deliver(std::move(m_delivery));
}

} // namespace Quorvix
