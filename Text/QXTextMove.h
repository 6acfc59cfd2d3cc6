#pragma once

#include <QtCore/QtGlobal>

#include <optional>

class QKeyEvent;

/// A movement of the text cursor that a key stands for.
struct QXTextMove
{
    enum class Target {
        NextCharacter,
        PreviousCharacter,
        NextWord,
        PreviousWord,
        NextRow,
        PreviousRow,
        NextPage,
        PreviousPage,
        RowStart,
        RowEnd,
        Start,
        End
    };

    Target target = Target::NextCharacter;
    /// Whether the movement extends the selection.
    bool selects = false;

    /// The movement of a key event with the shortcuts of the platform; absent when the key has none.
    [[nodiscard]] static std::optional<QXTextMove> of(const QKeyEvent &event);
    [[nodiscard]] bool isVertical() const;
};
