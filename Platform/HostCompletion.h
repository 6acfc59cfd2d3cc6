#pragma once

#include "Platform/NSURLSessionTask.h"

namespace Quorvix {

/// The completion handler of a task, on its way from the host to the main thread.
///
/// The objects that a handler captures may belong to the main thread. So the handler is destroyed there, and
/// at the end of the application at the latest, no matter which thread destroys this object. Any thread.
class HostCompletion final
{
public:
    explicit HostCompletion(DataTaskCompletionHandler handler);
    ~HostCompletion();
    Q_DISABLE_COPY_MOVE(HostCompletion)

    /// Returns the handler to the first caller. Null for later callers and after the end of the application.
    /// Main thread only.
    [[nodiscard]] DataTaskCompletionHandler take();

    /// Destroys the handlers of all tasks that have not completed. It happens when the application ends. Main
    /// thread only.
    static void destroyAll();

private:
    struct Handlers;

    DataTaskCompletionHandler withdraw();

    /// All of this belongs to the list of all handlers, with its lock.
    DataTaskCompletionHandler m_handler;
    HostCompletion *m_previous = nullptr;
    HostCompletion *m_next = nullptr;
};

} // namespace Quorvix
