#pragma once

#include "NSError.h"
#include "NSURLResponse.h"

#include <QtCore/QByteArray>

#include <functional>
#include <optional>

namespace Quorvix {

/// Where a task stands.
enum class NSURLSessionTaskState { Running, Suspended, Canceling, Completed };

/// What a data task hands over when it ends: the whole body, the response and the error, each optional.
using DataTaskCompletionHandler =
    std::function<void(std::optional<QByteArray>, NSURLResponsePtr, std::optional<NSError>)>;

} // namespace Quorvix
