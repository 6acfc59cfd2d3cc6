#pragma once

#include <QtCore/QStringView>

namespace Quorvix {

/// The code point that begins at @p at; half of a pair of surrogates stands for itself.
[[nodiscard]] inline char32_t codePointAt(QStringView text, qsizetype at)
{
    const QChar unit = text[at];
    if (unit.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate())
        return QChar::surrogateToUcs4(unit, text[at + 1]);
    return unit.unicode();
}

/// How many units of UTF-16 it takes.
[[nodiscard]] constexpr qsizetype unitCount(char32_t codePoint) noexcept
{
    return QChar::requiresSurrogates(codePoint) ? 2 : 1;
}

} // namespace Quorvix
