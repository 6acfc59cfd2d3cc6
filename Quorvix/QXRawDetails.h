#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

#include <functional>

struct QXRequestTrace;

/// Everything that is known about an exchange as one plain text: blocks of a label between two lines of 83
/// hyphens, a value where there is one, and an empty line.
///
/// Headers stand between braces, one in a line and indented, cookies as "name = value", and each entry of the
/// cache summary below its title. The size is that of the request's body. The cookies are those of the shared
/// storage as it stands. Linear in the size of the trace; any thread. @p bodyText says how a body reads, for
/// those who know already: as QXBodyText::text() would have it.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString
rawDetails(const QXRequestTrace &request, const std::function<QString(const QByteArray &)> &bodyText);
[[nodiscard]] QString rawDetails(const QXRequestTrace &request);
