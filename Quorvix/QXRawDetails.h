#pragma once

#include "Quorvix/QXExportedTrace.h"

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

#include <functional>

class QXTaskProgress;

/// Returns all information about an exchange as one plain text. Each block has a label between two lines of
/// 83 hyphens, a value if there is one, and an empty line.
///
/// Headers are in braces, indented, one per line. Cookies have the form "name = value". Each entry of the
/// cache summary follows its title. The size is the size of the request's body. The cookies are read from
/// the shared storage now. Linear in the size of the trace; any thread.
///
/// @p bodyText converts a body to text. A caller that already has the text can return it from there; it must
/// be equal to QXBodyText::text(). A task that is cancelled gives an empty text.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString
rawDetails(const QXExportedTrace &exported, const std::function<QString(const QByteArray &)> &bodyText,
           QXTaskProgress *progress = nullptr);
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString rawDetails(const QXExportedTrace &exported,
                                                         QXTaskProgress *progress = nullptr);
