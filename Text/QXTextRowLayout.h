#pragma once

#include <QtGui/QTextLayout>

#include <vector>

/// One row of a text view, laid out. Used by one thread at a time.
///
/// Positions are those of units within the row, from 0.
class QXTextRowLayout
{
public:
    /// Makes a row no wider than @p width: fonts that stand in for the one wanted may be wider than was
    /// reckoned with.
    QXTextRowLayout(const QString &text, const QFont &font, qreal width, qreal tabWidth);

    /// What is painted: signs stand in for characters that cannot be seen.
    [[nodiscard]] QString text() const { return m_layout.text(); }
    /// The width in which the row is drawn.
    [[nodiscard]] qreal width() const;
    [[nodiscard]] qreal xAt(int position) const;
    [[nodiscard]] int positionAt(qreal x) const;

    struct Span
    {
        qreal left = 0;
        qreal right = 0;
    };
    /// Where the characters between two positions are: in several places where directions meet.
    [[nodiscard]] std::vector<Span> spansOf(int from, int to) const;

    /// With the painter's pen, and the characters between @p from and @p to in another colour.
    void draw(QPainter &painter, QPointF baseline, int from, int to, const QColor &color) const;

private:
    QTextLayout m_layout;
    /// What the row is multiplied with to fit.
    qreal m_scale = 1;
};
