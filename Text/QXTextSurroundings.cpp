#include "Text/QXTextSurroundings.h"

#include "Text/QXTextDocument.h"

namespace {

/// The length of the reported text on each side of the cursor, in UTF-16 units.
constexpr qsizetype contextLength = 1000;

} // namespace

QXTextSurroundings::QXTextSurroundings(const QXTextDocument &document, const QXTextSelection &selection)
    : m_document(document), m_selection(selection),
      m_start(qMax<qsizetype>(0, selection.cursor() - contextLength)),
      m_end(qMin(document.length(), selection.cursor() + contextLength))
{
}

QVariant QXTextSurroundings::answer(Qt::InputMethodQuery query) const
{
    const qsizetype cursor = m_selection.cursor();
    switch (query) {
    case Qt::ImSurroundingText:
        return m_document.text(m_start, m_end - m_start);
    case Qt::ImTextBeforeCursor:
        return m_document.text(m_start, cursor - m_start);
    case Qt::ImTextAfterCursor:
        return m_document.text(cursor, m_end - cursor);
    case Qt::ImCurrentSelection:
        return m_document.text(m_selection.start(), qMin(m_selection.length(), contextLength));
    case Qt::ImCursorPosition:
        return int(cursor - m_start);
    case Qt::ImAnchorPosition:
        return int(qBound(m_start, m_selection.anchor(), m_end) - m_start);
    case Qt::ImAbsolutePosition:
        return int(cursor);
    default:
        return {};
    }
}
