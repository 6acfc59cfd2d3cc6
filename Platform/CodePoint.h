#pragma once

#include <QtCore/QStringView>

namespace Quorvix {

/// The code point that begins at @p at, or the unit itself when it is half of a surrogate pair.
[[nodiscard]] inline char32_t codePointAt(QStringView text, qsizetype at)
{
    const QChar unit = text[at];
    if (unit.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate())
        return QChar::surrogateToUcs4(unit, text[at + 1]);
    return unit.unicode();
}

/// How many UTF-16 units a code point takes.
[[nodiscard]] constexpr qsizetype unitCount(char32_t codePoint) noexcept
{
    return QChar::requiresSurrogates(codePoint) ? 2 : 1;
}

} // namespace Quorvix
