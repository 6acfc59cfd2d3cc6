#pragma once

#include "PlatformGlobal.h"

#include <QtCore/QAnyStringView>
#include <QtCore/QMap>
#include <QtCore/QString>

#include <optional>

namespace Quorvix {

/// Header names and their values, in ascending order of name.
using HTTPHeaderFields = QMap<QString, QString>;

/// Whether two texts name the same header: case makes no difference (RFC 9110, 5.1). Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT bool isSameHeaderName(QAnyStringView left, QAnyStringView right) noexcept;

/// The first header with this name in any case; the end when there is none. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT HTTPHeaderFields::const_iterator findHeader(const HTTPHeaderFields &fields,
                                                                              QAnyStringView name);

/// The value of the first header with this name in any case; absent when there is no such header or
/// @p fields is absent. Any thread.
[[nodiscard]] QUORVIX_CORE_EXPORT std::optional<QString>
headerValue(const std::optional<HTTPHeaderFields> &fields, QAnyStringView name);

} // namespace Quorvix
