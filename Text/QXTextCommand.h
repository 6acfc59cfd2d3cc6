#pragma once

#include "Text/QXTextMove.h"

#include <QtCore/QString>

/// A change of a text that a key stands for.
struct QXTextCommand
{
    enum class Kind { Undo, Redo, Cut, Paste, Delete, Insert };

    Kind kind = Kind::Insert;
    /// The target up to which text is deleted.
    QXTextMove::Target target = QXTextMove::Target::NextCharacter;
    /// The text to insert.
    QString text;

    /// The command of a key event with the shortcuts of the platform; absent when the key has none.
    [[nodiscard]] static std::optional<QXTextCommand> of(const QKeyEvent &event);
};
