#pragma once

#include "Platform/NSURLSessionTask.h"

#include <memory>

namespace Quorvix {

/// The completion handler of a task, on its way from the host to the main thread.
///
/// The objects that a handler captures may belong to the main thread. So the handler is destroyed there, and
/// at the end of the application at the latest, no matter which thread holds the last copy of this value.
/// Copies share the handler. Any thread.
class HostCompletion final
{
public:
    explicit HostCompletion(DataTaskCompletionHandler handler);

    /// Returns the handler to the first caller. Null for later callers and after the end of the application.
    /// Main thread only.
    [[nodiscard]] DataTaskCompletionHandler take() const;

    /// Destroys the handlers of all tasks that have not completed. It happens when the application ends. Main
    /// thread only.
    static void destroyAll();

private:
    struct Ticket;
    std::shared_ptr<const Ticket> m_ticket;
};

} // namespace Quorvix
