#pragma once

#include <QtCore/QByteArray>

namespace Quorvix {

/// How the names of HTTP headers are spelled for people.
namespace HTTPHeaderName {

/// The usual spelling of a header's name that was received as @p name. HTTP/2 sends all names in lower case,
/// and newer Qt reports those of HTTP/1.1 so, too. A registered name that is not spelled word by word has its
/// registered spelling, as in "ETag" and "WWW-Authenticate". Another name stays as it is when it has a
/// capital letter, which is then the sender's; else each of its words begins with one, as in "Content-Type".
/// Any thread.
[[nodiscard]] QByteArray usualSpelling(const QByteArray &name);

} // namespace HTTPHeaderName

} // namespace Quorvix
