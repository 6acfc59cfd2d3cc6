#pragma once

#include "Text/QXTextBoundaries.h"

#include <algorithm>

/// The selection in a document: from the anchor, where it began, to the cursor, which moves. A value; main
/// thread only.
class QXTextSelection
{
public:
    enum class Unit { Character, Word, Line };

    [[nodiscard]] qsizetype anchor() const noexcept { return m_anchor; }
    [[nodiscard]] qsizetype cursor() const noexcept { return m_cursor; }
    [[nodiscard]] qsizetype start() const noexcept { return std::min(m_anchor, m_cursor); }
    [[nodiscard]] qsizetype end() const noexcept { return std::max(m_anchor, m_cursor); }
    [[nodiscard]] qsizetype length() const noexcept { return end() - start(); }
    [[nodiscard]] bool isEmpty() const noexcept { return m_anchor == m_cursor; }

    void set(qsizetype anchor, qsizetype cursor);
    /// Selects the unit at @p position. With characters it selects nothing yet.
    void begin(const QXTextDocument &document, qsizetype position, Unit unit);
    /// Selects from the first unit to the end of the unit at @p position, in either direction.
    void extend(const QXTextDocument &document, qsizetype position);

private:
    qsizetype m_anchor = 0;
    qsizetype m_cursor = 0;
    Unit m_unit = Unit::Character;
    QXTextRange m_origin;
};
