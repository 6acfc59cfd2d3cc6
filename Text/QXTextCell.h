#pragma once

#include <QtCore/QtGlobal>

/// The room that one character takes in a grid of columns. A value; any thread.
struct QXTextCell
{
    static constexpr int tabColumns = 4;

    int columns = 1;
    /// Whether it belongs to the character before it: no row may begin with it if that can be helped.
    bool joins = false;

    /// An estimate that is cheap: fonts may disagree. @p previous is the character before it in the same
    /// row, or 0; @p column the one at which it would stand.
    [[nodiscard]] static QXTextCell of(char32_t character, char32_t previous, int column);
};
