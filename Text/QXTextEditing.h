#pragma once

#include "Text/QXTextSelection.h"

#include <QtCore/QString>

#include <deque>
#include <optional>

/// Edits a document and takes edits back again. Main thread only.
///
/// What is typed or deleted character by character is one edit up to the end of the word. Edits are
/// forgotten, the oldest first, when together they hold more text than is good to keep.
class QXTextEditing
{
public:
    /// Puts @p added in the place of a part. @p before is what undoing shall select again. Returns where the
    /// cursor goes.
    qsizetype replace(QXTextDocument &document, QXTextRange part, const QString &added,
                      const QXTextSelection &before);

    [[nodiscard]] bool canUndo() const noexcept { return m_done > 0; }
    [[nodiscard]] bool canRedo() const noexcept { return m_done < m_edits.size(); }
    /// Returns what is to be selected then, if there was an edit.
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
    void forgetUndone();
    void forgetOldest();

    std::deque<Edit> m_edits;
    /// So many of them are in the document; the others have been undone.
    size_t m_done = 0;
    /// In UTF-16 units.
    qsizetype m_size = 0;
};
