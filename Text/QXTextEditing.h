#pragma once

#include "Text/QXTextSelection.h"

#include <QtCore/QString>

#include <deque>
#include <optional>

/// Edits a document, and undoes and redoes edits. Main thread only.
///
/// Characters that are typed or deleted one by one are a single edit up to the end of the word. When the
/// edits together hold too much text, the oldest are removed.
class QXTextEditing
{
public:
    /// Replaces a part by @p added. @p before is the selection that undo restores. Returns the new position
    /// of the cursor.
    qsizetype replace(QXTextDocument &document, QXTextRange part, const QString &added,
                      const QXTextSelection &before);

    [[nodiscard]] bool canUndo() const noexcept { return m_done > 0; }
    [[nodiscard]] bool canRedo() const noexcept { return m_done < m_edits.size(); }
    /// Undoes the last edit. Returns the selection to restore; absent when there is nothing to undo.
    std::optional<QXTextSelection> undo(QXTextDocument &document);
    std::optional<QXTextSelection> redo(QXTextDocument &document);
    void clear();

private:
    struct Edit
    {
        qsizetype position = 0;
        QString removed;
        QString added;
        QXTextSelection before;

        [[nodiscard]] qsizetype size() const { return removed.size() + added.size(); }
    };

    [[nodiscard]] static bool join(Edit &last, const Edit &next);
    void discardUndone();
    void discardOldest();

    std::deque<Edit> m_edits;
    /// The number of edits that are applied to the document; the others are undone.
    size_t m_done = 0;
    /// The size of all edits, in UTF-16 units.
    qsizetype m_size = 0;
};
