#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>
#include <QtCore/QUrl>

namespace Quorvix {

/// The absolute string of a URL, percent-encoded as on the request line. Any thread.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString absoluteString(const QUrl &url);

/// Decodes percent escapes (RFC 3986, 2.1) when the result is UTF-8; otherwise returns the encoded form,
/// which loses nothing. Any thread.
[[nodiscard]] QString percentDecoded(QStringView encoded);

} // namespace Quorvix
