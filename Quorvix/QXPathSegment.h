#pragma once

#include <QtCore/QStringView>

/// Classifies the segments of a URL's path. Pure functions; any thread.
namespace QXPathSegment {

/// Whether the character is one of the ten ASCII digits.
[[nodiscard]] bool isDigit(QChar c);

/// Whether the segment consists of one or more digits only.
[[nodiscard]] bool isNumber(QStringView segment);

/// Whether the segment looks like the identifier of a resource: a number, or at least sixteen hexadecimal
/// digits and hyphens, as in a UUID or a hash.
[[nodiscard]] bool isIdentifier(QStringView segment);

} // namespace QXPathSegment
