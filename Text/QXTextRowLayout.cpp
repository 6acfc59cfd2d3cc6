#include "Text/QXTextRowLayout.h"

#include <QtGui/QPainter>

namespace {

/// Replaces each character that a layout interprets or hides by a visible symbol with as many units.
QString visible(QString text)
{
    constexpr char16_t controlPictures = 0x2400;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text[i];
        if (unit < u' ' && unit != u'\t')
            text[i] = QChar(controlPictures + unit.unicode());
        else if (unit == QChar(0x7F))
            text[i] = QChar(0x2421);
        else if (unit == QChar::LineSeparator || unit == QChar::ParagraphSeparator || unit == QChar(0x85))
            text[i] = QChar(0x2424);
        else if (unit.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else if (unit.isSurrogate())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace

QXTextRowLayout::QXTextRowLayout(const QString &text, const QFont &font, qreal width, qreal tabWidth)
    : m_layout(visible(text), font)
{
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setTextDirection(Qt::LeftToRight);
    option.setWrapMode(QTextOption::NoWrap);
    option.setTabStopDistance(tabWidth);
    option.setFlags(QTextOption::IncludeTrailingSpaces);
    m_layout.setTextOption(option);
    m_layout.setCacheEnabled(true);
    m_layout.beginLayout();
    m_layout.createLine();
    m_layout.endLayout();
    const qreal natural = m_layout.lineAt(0).naturalTextWidth();
    if (natural > width && width > 0)
        m_scale = width / natural;
}

qreal QXTextRowLayout::width() const
{
    return m_layout.lineAt(0).naturalTextWidth() * m_scale;
}

qreal QXTextRowLayout::xAt(int position) const
{
    return m_layout.lineAt(0).cursorToX(position) * m_scale;
}

int QXTextRowLayout::positionAt(qreal x) const
{
    return m_layout.lineAt(0).xToCursor(x / m_scale);
}

std::vector<QXTextRowLayout::Span> QXTextRowLayout::spansOf(int from, int to) const
{
    const QTextLine line = m_layout.lineAt(0);
    std::vector<Span> spans;
    for (int position = from; position < to; ++position) {
        const qreal leading = line.cursorToX(position, QTextLine::Leading) * m_scale;
        const qreal trailing = line.cursorToX(position, QTextLine::Trailing) * m_scale;
        const Span span{qMin(leading, trailing), qMax(leading, trailing)};
        if (!spans.empty() && qFuzzyCompare(1 + spans.back().right, 1 + span.left))
            spans.back().right = span.right;
        else if (!spans.empty() && qFuzzyCompare(1 + spans.back().left, 1 + span.right))
            spans.back().left = span.left;
        else if (span.left < span.right)
            spans.push_back(span);
    }
    return spans;
}

void QXTextRowLayout::draw(QPainter &painter, QPointF baseline, int from, int to, const QColor &color) const
{
    QList<QTextLayout::FormatRange> selections;
    if (from < to) {
        QTextLayout::FormatRange selected{from, to - from, {}};
        selected.format.setForeground(color);
        selections.append(selected);
    }
    painter.save();
    painter.translate(baseline.x(), baseline.y() - m_layout.lineAt(0).ascent());
    painter.scale(m_scale, 1);
    m_layout.draw(&painter, QPointF(), selections);
    painter.restore();
}
