#pragma once

#include <QtCore/QtGlobal>

/// The width of one character in a grid of columns. A value; any thread.
struct QXTextCell
{
    static constexpr int tabColumns = 4;

    int columns = 1;
    /// Whether it belongs to the character before it. A row begins with such a character only when it has to.
    bool joins = false;

    /// A cheap estimate; the width in a font may differ. @p previous is the character before it in the same
    /// row, or 0; @p column is the column of the character.
    [[nodiscard]] static QXTextCell of(char32_t character, char32_t previous, int column);
};
