#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>
#include <QtCore/QUrl>

namespace Quorvix {

/// The URL's absolute string: percent-encoded, as it stands on the request line. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString absoluteString(const QUrl &url);

/// Percent escapes (RFC 3986, 2.1) taken back where they stand for text in UTF-8; else the encoded form,
/// which loses nothing. Any thread.
[[nodiscard]] QString percentDecoded(QStringView encoded);

} // namespace Quorvix
