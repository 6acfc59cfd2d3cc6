#include "Text/QXTextSelection.h"

namespace {

QXTextRange unitAt(const QXTextDocument &document, qsizetype position, QXTextSelection::Unit unit)
{
    switch (unit) {
    case QXTextSelection::Unit::Word:
        return QXTextBoundaries::wordAt(document, position);
    case QXTextSelection::Unit::Line:
        return QXTextBoundaries::lineAt(document, position);
    case QXTextSelection::Unit::Character:
        break;
    }
    return {position, position};
}

} // namespace

void QXTextSelection::set(qsizetype anchor, qsizetype cursor)
{
    m_anchor = anchor;
    m_cursor = cursor;
    m_unit = Unit::Character;
    m_origin = {anchor, anchor};
}

void QXTextSelection::begin(const QXTextDocument &document, qsizetype position, Unit unit)
{
    m_unit = unit;
    m_origin = unitAt(document, position, unit);
    m_anchor = m_origin.start;
    m_cursor = m_origin.end;
}

void QXTextSelection::extend(const QXTextDocument &document, qsizetype position)
{
    const QXTextRange reached = unitAt(document, position, m_unit);
    const bool isForwards = reached.start >= m_origin.start;
    m_anchor = isForwards ? m_origin.start : m_origin.end;
    m_cursor = isForwards ? std::max(reached.end, m_origin.end) : reached.start;
}
