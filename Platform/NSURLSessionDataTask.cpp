#include "Platform/NSURLSessionDataTask.h"

#include "Platform/URLLoader.h"

NSURLSessionDataTask::NSURLSessionDataTask(std::shared_ptr<Core> core) : m_core(std::move(core)) {}

NSURLSessionDataTask::~NSURLSessionDataTask() = default;

void NSURLSessionDataTask::resume()
{
    auto expected = State::Suspended;
    if (m_core->state.compare_exchange_strong(expected, State::Running))
        LoadingThread::post([core = m_core] { startLoading(core); });
}

void NSURLSessionDataTask::cancel()
{
    auto state = m_core->state.load();
    do {
        if (state == State::Canceling || state == State::Completed)
            return;
    } while (!m_core->state.compare_exchange_weak(state, State::Canceling));
    LoadingThread::post([core = m_core] { cancelLoading(core); });
}

NSURLSessionDataTask::State NSURLSessionDataTask::state() const noexcept
{
    return m_core->state;
}

const URLRequest &NSURLSessionDataTask::originalRequest() const noexcept
{
    return m_core->request;
}
