#include "Platform/WriteAll.h"

#include <QtCore/QIODevice>

namespace Quorvix {

std::optional<NSError> writeAll(QIODevice &device, QByteArrayView bytes)
{
    // A full disk accepts a part of the bytes and fails only at the next write, so the rest is written again.
    while (!bytes.isEmpty()) {
        const qint64 written = device.write(bytes.data(), bytes.size());
        if (written <= 0)
            return NSError{NSCocoaErrorDomain, NSFileWriteUnknownError, device.errorString()};
        bytes = bytes.sliced(written);
    }
    return std::nullopt;
}

} // namespace Quorvix
