#pragma once

#include <QtCore/QtGlobal>

#include <optional>

class QKeyEvent;

/// Where a key moves the cursor of a text to.
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
    /// Whether the anchor stays where it is.
    bool selects = false;

    /// By the keys that the platform uses.
    [[nodiscard]] static std::optional<QXTextMove> of(const QKeyEvent &event);
    [[nodiscard]] bool isVertical() const;
};
