#pragma once

#include "Platform/NSURLSessionTask.h"

#include <memory>

/// The completion handler of a captured task, on its way from the host to the main thread.
///
/// The objects that a handler captures may belong to the main thread. So the handler is destroyed there, and
/// at the end of the application at the latest, no matter which thread holds the last copy of this value.
/// Copies share the handler. Any thread.
class QXHostCompletion final
{
public:
    explicit QXHostCompletion(Quorvix::DataTaskCompletionHandler handler);

    /// Returns the handler to the first caller. Null for later callers and after the end of the application.
    /// Main thread only.
    [[nodiscard]] Quorvix::DataTaskCompletionHandler take() const;

    /// Destroys the handlers of all tasks that have not completed. Called when the application ends. Main
    /// thread only.
    static void destroyAll();

private:
    struct Ticket;
    std::shared_ptr<const Ticket> m_ticket;
};
