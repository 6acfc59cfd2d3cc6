#pragma once

#include <QtCore/QString>

#include <chrono>

namespace Quorvix {

/// Formats points in time in ISO 8601 form. Stateless; any thread.
class NSISO8601DateFormatter
{
public:
    /// UTC with a "Z" and whole seconds, rounded down: 2023-11-14T22:13:20Z.
    [[nodiscard]] static QString string(std::chrono::system_clock::time_point time);
};

} // namespace Quorvix
