#pragma once

#include <QtCore/QByteArray>

namespace Quorvix {

/// How the inspector spells the names of HTTP headers for people.
namespace HTTPHeaderName {

/// The usual spelling of a header's name that was received as @p name. HTTP/2 sends all names in lower case,
/// and newer Qt reports the names of HTTP/1.1 in lower case, too. A registered name with an unusual spelling
/// gets that spelling, as in "ETag" and "WWW-Authenticate"; so do "Content-Type", "Cookie" and "Set-Cookie",
/// which exports look up. Any other name with a capital letter stays as the sender spelled it. A name without
/// one gets a capital letter for each word, as in "Content-Type". Any thread.
[[nodiscard]] QByteArray usualSpelling(const QByteArray &name);

} // namespace HTTPHeaderName

} // namespace Quorvix
