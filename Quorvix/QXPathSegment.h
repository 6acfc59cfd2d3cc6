#pragma once

#include <QtCore/QStringView>

/// What a segment of a URL's path stands for. Pure functions; any thread.
namespace QXPathSegment {

/// One of the ten of ASCII.
[[nodiscard]] bool isDigit(QChar c);

/// Digits alone, and one at least.
[[nodiscard]] bool isNumber(QStringView segment);

/// Whether the segment names one of many: a number, or sixteen and more hexadecimal digits and hyphens, as a
/// UUID or a hash has.
[[nodiscard]] bool isIdentifier(QStringView segment);

} // namespace QXPathSegment
