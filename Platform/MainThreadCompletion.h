#pragma once

#include "Platform/HostCompletion.h"
#include "Platform/TaskMailbox.h"

namespace Quorvix {

/// A completion handler for a task that hands the outcome to the host's handler on the main thread, in a
/// later turn of its event loop.
///
/// What has not been delivered when the application ends is dropped, and the host's handler is destroyed on
/// the main thread. Any thread may call it, once.
class MainThreadCompletion final
{
public:
    /// All that a delivery needs, in one piece: most programs make one for each of their exchanges.
    class Delivery : public MailboxTask
    {
    public:
        explicit Delivery(DataTaskCompletionHandler host) : m_host(std::move(host)) {}

    protected:
        /// What the task has ended with.
        struct Outcome
        {
            std::optional<QByteArray> data;
            NSURLResponsePtr response;
            std::optional<NSError> error;
        };

        /// Calls @p host, which may be null. On the main thread.
        virtual void deliver(const DataTaskCompletionHandler &host);
        /// The same from the call of the completion handler on.
        [[nodiscard]] const Outcome &outcome() const noexcept { return m_outcome; }

    private:
        friend class MainThreadCompletion;
        void run() final;

        HostCompletion m_host;
        Outcome m_outcome;
    };

    /// Calls @p host.
    explicit MainThreadCompletion(DataTaskCompletionHandler host);
    /// Runs @p delivery.
    explicit MainThreadCompletion(std::shared_ptr<Delivery> delivery);

    void operator()(std::optional<QByteArray> data, NSURLResponsePtr response, std::optional<NSError> error);

private:
    std::shared_ptr<Delivery> m_delivery;
};

} // namespace Quorvix
