#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>

namespace Quorvix {

/// The text in the language of the application: @p text as its catalogue translates it in the context
/// "Quorvix", or as it is where the catalogue does not have it. Any thread.
///
/// lupdate does not know this function, so it is only for texts that come from a table or a parameter and are
/// marked there with QT_TRANSLATE_NOOP("Quorvix", ...). A literal is looked up where it stands, by
/// QCoreApplication::translate("Quorvix", ...), which lupdate does know.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString localized(const char *text);

} // namespace Quorvix
