#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

namespace Quorvix {

/// @p text in the language of the application: its translation in the context "Quorvix", or @p text itself
/// when the application's catalogue has none. Any thread.
///
/// lupdate does not know this function, so it is only for texts that come from a table or a parameter and are
/// marked there with QT_TRANSLATE_NOOP("Quorvix", ...). A literal is looked up where it stands, by
/// QCoreApplication::translate("Quorvix", ...), which lupdate does know.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString localized(const char *text);

} // namespace Quorvix
