// What a canvas shows beside the digits of bytes.

#include "Text/QXTextCanvas.h"

#include <QtGui/QPainter>

#include <cmath>

namespace {

constexpr qsizetype unitsPerByte = QXTextContent::unitsPerByte;

} // namespace

/// The byte of a row that begins nearest to a point, among the digits or among the characters.
qsizetype QXTextCanvas::byteAt(int row, qreal x) const
{
    const qsizetype first = m_rows.start(row) / unitsPerByte;
    const qreal characters = (m_hexColumns.charactersColumn() - 1) * m_cellWidth;
    if (m_hexColumns.areComplete() && x > characters) {
        const auto beside = qsizetype(std::round(x / m_cellWidth - m_hexColumns.charactersColumn()));
        return first + qBound<qsizetype>(0, beside, qsizetype(m_hexColumns.bytesPerRow()));
    }
    return first + (layoutOf(row).positionAt(x - textLeft()) + 1) / unitsPerByte;
}

void QXTextCanvas::paintHexMargins(QPainter &painter, int row) const
{
    const QByteArray bytes = m_document->content().bytes();
    const qsizetype first = m_rows.start(row) / unitsPerByte;
    const qsizetype count = qMin<qsizetype>(m_hexColumns.bytesPerRow(), bytes.size() - first);
    const qreal top = row * m_rowHeight - m_scrollOffset;
    const qreal left = m_hexColumns.charactersColumn() * m_cellWidth;
    const qsizetype from = qBound<qsizetype>(0, (m_selection.start() + 1) / unitsPerByte - first, count);
    const qsizetype to = qBound(from, (m_selection.end() + 2) / unitsPerByte - first, count);
    painter.setFont(m_shownFont);
    painter.setPen(m_marginColor);
    painter.drawText(QPointF(0, top + m_baseline), m_hexColumns.offsetText(first));
    const QString characters = QXHexColumns::charactersOf(QByteArrayView(bytes).sliced(first, count));
    const auto draw = [&](qsizetype start, qsizetype end) {
        const QPointF place(left + qreal(start) * m_cellWidth, top + m_baseline);
        painter.drawText(place, characters.sliced(start, end - start));
    };
    draw(0, from);
    draw(to, count);
    if (from == to)
        return;
    painter.fillRect(
        QRectF(left + qreal(from) * m_cellWidth, top, qreal(to - from) * m_cellWidth, m_rowHeight),
        m_selectionColor);
    painter.setPen(m_selectedTextColor);
    draw(from, to);
}
