#pragma once

#include "Text/QXTextMove.h"

#include <QtCore/QString>

/// How a key changes a text.
struct QXTextCommand
{
    enum class Kind { Undo, Redo, Cut, Paste, Delete, Insert };

    Kind kind = Kind::Insert;
    /// As far as where something is deleted.
    QXTextMove::Target target = QXTextMove::Target::NextCharacter;
    /// What is inserted.
    QString text;

    /// By the keys that the platform uses.
    [[nodiscard]] static std::optional<QXTextCommand> of(const QKeyEvent &event);
};
