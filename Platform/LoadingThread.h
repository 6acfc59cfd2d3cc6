#pragma once

#include <functional>

class QObject;

namespace Quorvix {

/// The thread in which all sessions load. It starts with the first task and ends with the application.
namespace LoadingThread {

/// Runs @p task there, in order; before there is an application it waits, after its end it is dropped.
void post(std::function<void()> task);

/// The parent of what lives in the thread and ends with it. To be called in the thread.
[[nodiscard]] QObject *parent();

} // namespace LoadingThread

} // namespace Quorvix
