#pragma once

#include "PlatformGlobal.h"

#include <QtCore/QString>

#include <map>
#include <variant>

namespace Quorvix {

/// A header's name or value as the loading system reports it. Normally text; a protocol handler may also
/// store a number.
using NSHeaderValue = std::variant<QString, qint64, double>;
/// Header names and values of a response. Names that differ in case are different keys.
using NSHeaderFields = std::map<NSHeaderValue, NSHeaderValue>;

/// The text form of a header's name or value. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT QString description(const NSHeaderValue &value);

} // namespace Quorvix
