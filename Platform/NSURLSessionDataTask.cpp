#include "Platform/NSURLSessionDataTask.h"

#include "Platform/LoadingThread.h"
#include "Platform/URLLoader.h"

namespace Quorvix {

NSURLSessionDataTask::NSURLSessionDataTask(std::shared_ptr<URLLoadTask> load) : m_load(std::move(load)) {}

NSURLSessionDataTask::~NSURLSessionDataTask() = default;

void NSURLSessionDataTask::resume()
{
    auto expected = State::Suspended;
    if (m_load->state.compare_exchange_strong(expected, State::Running))
        LoadingThread::post([load = m_load] { startLoading(load); });
}

void NSURLSessionDataTask::cancel()
{
    auto state = m_load->state.load();
    do {
        if (state == State::Canceling || state == State::Completed)
            return;
    } while (!m_load->state.compare_exchange_weak(state, State::Canceling));
    LoadingThread::post([load = m_load] { cancelLoading(load); });
}

NSURLSessionDataTask::State NSURLSessionDataTask::state() const noexcept
{
    return m_load->state;
}

const URLRequest &NSURLSessionDataTask::originalRequest() const noexcept
{
    return m_load->request;
}

} // namespace Quorvix
