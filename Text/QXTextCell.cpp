#include "Text/QXTextCell.h"

#include <QtCore/QChar>

#include <algorithm>
#include <iterator>

namespace {

constexpr char32_t zeroWidthJoiner = 0x200D;
constexpr char32_t emojiSelector = 0xFE0F;

struct Range
{
    char32_t first;
    char32_t last;
};

/// Wide and full-width characters (Unicode Standard Annex 11) in coarse blocks, and emoji. Monospaced fonts
/// rarely contain emoji, and those of fallback fonts are wider than one column.
constexpr Range wideRanges[] = {
    {0x1100, 0x115F}, {0x231A, 0x231B}, {0x2329, 0x232A},   {0x23E9, 0x23F3},   {0x25FD, 0x25FE},
    {0x2600, 0x27BF}, {0x2B1B, 0x2B1C}, {0x2B50, 0x2B55},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},
    {0xA960, 0xA97F}, {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},   {0xFE10, 0xFE19},   {0xFE30, 0xFE6F},
    {0xFF01, 0xFF60}, {0xFFE0, 0xFFE6}, {0x16FE0, 0x1B2FF}, {0x1F000, 0x1FAFF}, {0x20000, 0x3FFFD},
};

bool isWide(char32_t character)
{
    const auto *const range =
        std::lower_bound(std::begin(wideRanges), std::end(wideRanges), character,
                         [](const Range &candidate, char32_t value) { return candidate.last < value; });
    return range != std::end(wideRanges) && character >= range->first;
}

bool isIn(char32_t character, char32_t first, char32_t last)
{
    return character >= first && character <= last;
}

bool isFlagLetter(char32_t character)
{
    return isIn(character, 0x1F1E6, 0x1F1FF);
}

/// Whether this is a vowel or final consonant of Hangul, which is drawn within the syllable.
bool isConjoiningJamo(char32_t character)
{
    return isIn(character, 0x1160, 0x11FF) || isIn(character, 0xD7B0, 0xD7FF);
}

bool isSkinTone(char32_t character)
{
    return isIn(character, 0x1F3FB, 0x1F3FF);
}

} // namespace

QXTextCell QXTextCell::of(char32_t character, char32_t previous, int column)
{
    if (character == U'\t')
        return {tabColumns - column % tabColumns};
    if (character < 0x300 || QChar::isSurrogate(character))
        return {};
    const bool hasBase = previous != 0;
    const QChar::Category category = QChar::category(character);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing ||
        category == QChar::Other_Format || isConjoiningJamo(character))
        // The selector turns a narrow symbol into an emoji of two columns.
        return {character == emojiSelector && !isWide(previous) ? 1 : 0, hasBase};
    if (category == QChar::Mark_SpacingCombining)
        return {1, hasBase};
    if (!isWide(character))
        return {};
    if (hasBase && (isSkinTone(character) || previous == zeroWidthJoiner))
        return {0, true};
    if (isFlagLetter(character))
        return isFlagLetter(previous) ? QXTextCell{1, true} : QXTextCell{1, false};
    return {2};
}
