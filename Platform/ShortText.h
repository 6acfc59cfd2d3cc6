#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QStringView>

namespace Quorvix {

/// Cuts texts that servers and requests can make very long. Lay out only the result: the time for the layout
/// of a line grows with its length, and is seconds for 30,000 characters. Any thread.
///
/// A longer text is cut between two characters as a reader sees them (graphemes), and "…" replaces the rest.
/// The cost does not depend on the length of the text.
namespace ShortText {

/// More UTF-16 code units than a line in a window can show.
inline constexpr qsizetype longestLine = 300;

/// The beginning of a text; at most @p longest UTF-16 code units and the "…".
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString beginning(const QString &text, qsizetype longest = longestLine);
/// Both ends of a text; at most @p longest UTF-16 code units and the "…".
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QString ends(const QString &text, qsizetype longest = longestLine);

/// The parts of a name such as "deliveryWindow_inDays", between which a line can end.
[[nodiscard]] QUORVIX_INTERNAL_EXPORT QStringList wordsOfName(const QString &name);

} // namespace ShortText

} // namespace Quorvix
