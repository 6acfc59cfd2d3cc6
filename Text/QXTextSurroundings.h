#pragma once

#include "Text/QXTextSelection.h"

#include <QtCore/QVariant>

/// The part of a text that an input method is told of: what is around the cursor, however long the text. Main
/// thread only, and no longer than its arguments live.
class QXTextSurroundings
{
public:
    QXTextSurroundings(const QXTextDocument &document, const QXTextSelection &selection);

    /// The position in the document at which what is told begins.
    [[nodiscard]] qsizetype start() const noexcept { return m_start; }
    /// Invalid for a query that is not about the text.
    [[nodiscard]] QVariant answer(Qt::InputMethodQuery query) const;

private:
    const QXTextDocument &m_document;
    const QXTextSelection &m_selection;
    qsizetype m_start = 0;
    qsizetype m_end = 0;
};
