// How a canvas paints its rows, and shows the picture.

#include "Text/QXTextCanvas.h"

#include "Text/QXTextMatches.h"

#include <QtGui/QPainter>
#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGImageNode>

#include <algorithm>
#include <memory>

QImage QXTextCanvas::paintPicture()
{
    const qreal scale = window()->effectiveDevicePixelRatio();
    QImage picture((size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull())
        return picture;
    picture.fill(m_fillColor);
    QPainter painter(&picture);
    painter.scale(picture.width() / width(), picture.height() / height());
    paint(painter);
    return picture;
}

QSGNode *QXTextCanvas::updatePaintNode(QSGNode *before, UpdatePaintNodeData *)
{
    auto *node = static_cast<QSGImageNode *>(before);
    if (m_picture.isNull()) {
        delete node;
        return nullptr;
    }
    if (!node)
        node = window()->createImageNode();
    // Not every graphics back end deletes the texture that is replaced.
    const std::unique_ptr<QSGTexture> replaced(node->texture());
    node->setOwnsTexture(false);
    node->setTexture(window()->createTextureFromImage(m_picture, m_fillColor.alpha() == 255
                                                                     ? QQuickWindow::TextureIsOpaque
                                                                     : QQuickWindow::TextureHasAlphaChannel));
    node->setOwnsTexture(true);
    node->setFiltering(QSGTexture::Linear);
    node->setSourceRect(m_picture.rect());
    node->setRect(boundingRect());
    return node;
}

void QXTextCanvas::paint(QPainter &painter)
{
    const int first = rowAtOffset(m_scrollOffset);
    const int last = rowAtOffset(m_scrollOffset + height());
    for (int row = first; m_hexColumns.areComplete() && row <= last; ++row)
        paintHexMargins(painter, row);
    painter.save();
    painter.translate(textLeft(), 0);
    if (!m_markedText.isEmpty() && m_document)
        paintMarks(painter, first, last);
    for (int row = first; row <= last; ++row)
        paintRow(painter, row);
    painter.restore();
}

/// Marks a text that may continue on further rows.
void QXTextCanvas::paintMarks(QPainter &painter, int first, int last) const
{
    const qsizetype length = m_markedText.size();
    const qsizetype from = qMax<qsizetype>(0, m_rows.start(first) - length + 1);
    const auto mark = [&](qsizetype position) {
        for (int row = qMax(first, m_rows.rowAt(position)); row <= last; ++row) {
            if (m_rows.start(row) >= position + length)
                break;
            fillRow(painter, row, position, position + length, m_markColor);
        }
    };
    QXTextMatches::visit(m_document->content(), m_markedText, from, m_rows.end(last), mark);
}

/// Fills the background of the part of a row that is between two positions of the text.
void QXTextCanvas::fillRow(QPainter &painter, int row, qsizetype start, qsizetype end,
                           const QColor &color) const
{
    const QXTextRowLayout &layout = layoutOf(row);
    const qreal top = row * m_rowHeight - m_scrollOffset;
    const qsizetype rowStart = m_rows.start(row);
    const qsizetype length = layout.text().size();
    const int from = int(std::clamp<qsizetype>(start - rowStart, 0, length));
    const int to = int(std::clamp<qsizetype>(end - rowStart, from, length));
    for (const QXTextRowLayout::Span &span : layout.spansOf(from, to))
        painter.fillRect(QRectF(span.left, top, span.right - span.left, m_rowHeight), color);
}

void QXTextCanvas::paintRow(QPainter &painter, int row) const
{
    const QXTextRowLayout &layout = layoutOf(row);
    const qreal top = row * m_rowHeight - m_scrollOffset;
    const qsizetype start = m_rows.start(row);
    const qsizetype length = layout.text().size();
    fillRow(painter, row, m_selection.start(), m_selection.end(), m_selectionColor);
    // A selected line end is shown as extra width; otherwise it would be invisible.
    const qsizetype lineEnd = start + length;
    if (lineEnd < m_rows.end(row) && m_selection.start() <= lineEnd && m_selection.end() > lineEnd)
        painter.fillRect(QRectF(layout.width(), top, m_columnWidth, m_rowHeight), m_selectionColor);
    painter.setPen(m_color);
    const int from = int(std::clamp<qsizetype>(m_selection.start() - start, 0, length));
    const int to = int(std::clamp<qsizetype>(m_selection.end() - start, from, length));
    layout.draw(painter, QPointF(0, top + m_baseline), from, to, m_selectedTextColor);
}
