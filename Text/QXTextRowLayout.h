#pragma once

#include <QtGui/QTextLayout>

#include <vector>

/// The layout of one row of a text view. Only for the thread that creates it, because it keeps fonts of that
/// thread.
///
/// Positions count units within the row, from 0.
class QXTextRowLayout
{
public:
    /// Lays out a row that is at most @p width wide. A row with wider characters from fallback fonts is
    /// shrunk to fit.
    QXTextRowLayout(const QString &text, const QFont &font, qreal width, qreal tabWidth);

    /// The painted text, with symbols for invisible characters.
    [[nodiscard]] QString text() const { return m_layout.text(); }
    /// The painted width of the row.
    [[nodiscard]] qreal width() const;
    [[nodiscard]] qreal xAt(int position) const;
    [[nodiscard]] int positionAt(qreal x) const;

    struct Span
    {
        qreal left = 0;
        qreal right = 0;
    };
    /// The spans of the characters between two positions. There are several where text directions mix.
    [[nodiscard]] std::vector<Span> spansOf(int from, int to) const;

    /// Draws the row with the painter's pen, and the characters between @p from and @p to in @p color.
    void draw(QPainter &painter, QPointF baseline, int from, int to, const QColor &color) const;

private:
    QTextLayout m_layout;
    /// The horizontal scale that makes the row fit.
    qreal m_scale = 1;
};
