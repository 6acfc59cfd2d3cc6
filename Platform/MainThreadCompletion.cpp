#include "Platform/MainThreadCompletion.h"

#include "Platform/LoadingThread.h"

#include <utility>

namespace Quorvix {

namespace {

/// To copy a body of up to this size takes less time than it saves.
constexpr qsizetype largestCopy = 16'384;

} // namespace

/// Traces stay, and what they keep must not lie between the memory that the loading thread takes and frees
/// for each exchange: it would be in pieces soon, and each allocation slower than the one before. So the body
/// is copied here, and what came from that thread goes back.
void MainThreadCompletion::Delivery::run()
{
    std::optional<QByteArray> lent;
    std::optional<QByteArray> &data = m_outcome.data;
    if (data && !data->isEmpty() && data->size() <= largestCopy)
        lent = std::exchange(data, QByteArray(data->constData(), data->size()));
    deliver(m_host.take());
    LoadingThread::giveBack(std::move(lent), std::move(m_outcome.response));
}

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
