#pragma once

#include "Platform/NSError.h"
#include "Platform/PlatformGlobal.h"

#include <QtCore/QByteArrayView>

#include <optional>

class QIODevice;

namespace Quorvix {

/// Writes all of the bytes. Fails with NSCocoaErrorDomain / NSFileWriteUnknownError and the device's own
/// sentence; the device may then hold a part of the bytes. On the device's thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT std::optional<NSError> writeAll(QIODevice &device,
                                                                      QByteArrayView bytes);

} // namespace Quorvix
