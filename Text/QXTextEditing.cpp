#include "Text/QXTextEditing.h"

#include "Text/QXTextDocument.h"

namespace {

/// The maximum size of all stored edits, in UTF-16 units. A text of ten megabytes can be replaced a few
/// times.
constexpr qsizetype maximumSize = 64'000'000;

/// Whether @p next begins a word, or a line, after @p last.
bool isBoundary(QChar last, QChar next)
{
    return (last.isSpace() && !next.isSpace()) || next == u'\n';
}

} // namespace

qsizetype QXTextEditing::replace(QXTextDocument &document, QXTextRange part, const QString &added,
                                 const QXTextSelection &before)
{
    const Edit edit{part.start, document.text(part.start, part.end - part.start), added, before};
    if (edit.size() == 0)
        return part.start;
    discardUndone();
    if (m_edits.empty() || !join(m_edits.back(), edit))
        m_edits.push_back(edit);
    m_done = m_edits.size();
    m_size += edit.size();
    discardOldest();
    document.replace(edit.position, edit.removed.size(), edit.added);
    return edit.position + added.size();
}

/// Adds the next edit to the last one if it continues it. Returns whether it did.
bool QXTextEditing::join(Edit &last, const Edit &next)
{
    constexpr qsizetype keystroke = 2; // a pair of surrogates
    if (next.size() > keystroke)
        return false;
    if (next.removed.isEmpty() && !last.added.isEmpty() &&
        next.position == last.position + last.added.size() &&
        !isBoundary(last.added.back(), next.added.front())) {
        last.added += next.added;
        return true;
    }
    if (!next.added.isEmpty() || !last.added.isEmpty())
        return false;
    const bool isBackspace = next.position + next.removed.size() == last.position;
    if (isBackspace && !isBoundary(next.removed.back(), last.removed.front())) {
        last.position = next.position;
        last.removed.prepend(next.removed);
        return true;
    }
    if (!isBackspace && next.position == last.position &&
        !isBoundary(last.removed.back(), next.removed.front())) {
        last.removed += next.removed;
        return true;
    }
    return false;
}

void QXTextEditing::discardUndone()
{
    for (; m_edits.size() > m_done; m_edits.pop_back())
        m_size -= m_edits.back().size();
}

void QXTextEditing::discardOldest()
{
    for (; m_size > maximumSize && m_edits.size() > 1; --m_done) {
        m_size -= m_edits.front().size();
        m_edits.pop_front();
    }
}

std::optional<QXTextSelection> QXTextEditing::undo(QXTextDocument &document)
{
    if (!canUndo())
        return std::nullopt;
    const Edit &edit = m_edits[--m_done];
    document.replace(edit.position, edit.added.size(), edit.removed);
    return edit.before;
}

std::optional<QXTextSelection> QXTextEditing::redo(QXTextDocument &document)
{
    if (!canRedo())
        return std::nullopt;
    const Edit &edit = m_edits[m_done++];
    document.replace(edit.position, edit.removed.size(), edit.added);
    QXTextSelection after;
    after.set(edit.position + edit.added.size(), edit.position + edit.added.size());
    return after;
}

void QXTextEditing::clear()
{
    m_edits.clear();
    m_done = 0;
    m_size = 0;
}
