#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

namespace Quorvix {

/// Formats sizes in the user's language. Stateless; any thread.
class QUORVIX_INTERNAL_EXPORT NSByteCountFormatter
{
public:
    /// Kilobytes of 1000 bytes, without a fraction. From one megabyte on, megabytes with at most one decimal
    /// digit: "12 KB", "1.5 MB". Sizes between 0 and 1 KB become 1 KB.
    [[nodiscard]] static QString string(qint64 byteCount);
};

} // namespace Quorvix
