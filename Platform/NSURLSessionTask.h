#pragma once

#include "NSError.h"
#include "NSURLResponse.h"

#include <QtCore/QByteArray>

#include <functional>
#include <optional>

namespace Quorvix {

/// The state of a task.
enum class NSURLSessionTaskState { Running, Suspended, Canceling, Completed };

/// Called when a data task ends, with the whole body, the response and the error, each optional.
using DataTaskCompletionHandler =
    std::function<void(std::optional<QByteArray>, NSURLResponsePtr, std::optional<NSError>)>;

} // namespace Quorvix
