#pragma once

#include "Text/QXTextSelection.h"

#include <QtCore/QVariant>

/// The text around the cursor that is reported to an input method; its length is limited. Main thread only.
/// The object must not outlive its arguments.
class QXTextSurroundings
{
public:
    QXTextSurroundings(const QXTextDocument &document, const QXTextSelection &selection);

    /// The position in the document where the reported text begins.
    [[nodiscard]] qsizetype start() const noexcept { return m_start; }
    /// The answer to a query; invalid for a query that is not about the text.
    [[nodiscard]] QVariant answer(Qt::InputMethodQuery query) const;

private:
    const QXTextDocument &m_document;
    const QXTextSelection &m_selection;
    qsizetype m_start = 0;
    qsizetype m_end = 0;
};
