#include "Quorvix/QXButtonPart.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int fontSize = 12;
constexpr qreal sideInset = 6;
constexpr qreal topInset = 2;
constexpr qreal largestRadius = 10;

} // namespace

QXButtonPart::QXButtonPart(QQuickItem &parent, const QRectF &frame, Paint paint)
    : QQuickPaintedItem(&parent), m_paint(std::move(paint))
{
    setPosition(frame.topLeft());
    setSize(frame.size());
    setAntialiasing(true);
}

void QXButtonPart::paint(QPainter *painter)
{
    painter->setPen(Qt::NoPen);
    m_paint(*painter);
}

QXButtonBadge::QXButtonBadge(QQuickItem &parent) : QQuickPaintedItem(&parent)
{
    setObjectName(QStringLiteral("QXBadgeLabel"));
    setAntialiasing(true);
    setVisible(false);
}

void QXButtonBadge::setText(const QString &text)
{
    m_text = text;
    setVisible(!text.isEmpty());
    fit();
}

void QXButtonBadge::setLook(const QXPalette &palette, const QString &fontFamily, bool isCutOut)
{
    m_palette = palette;
    m_isCutOut = isCutOut;
    m_font.setFamilies({fontFamily});
    m_font.setPixelSize(fontSize);
    m_font.setWeight(QFont::Bold);
    fit();
}

/// Takes the size of the text. Before there is one, no font has to be loaded.
void QXButtonBadge::fit()
{
    if (!m_text.isEmpty()) {
        const QFontMetricsF metrics(m_font);
        const qreal height = std::ceil(metrics.height()) + 2 * topInset;
        const qreal width = std::ceil(metrics.horizontalAdvance(m_text)) + 2 * sideInset;
        setSize({std::max(height, width), height});
    }
    update();
    Q_EMIT changed();
}

void QXButtonBadge::paint(QPainter *painter)
{
    const qreal radius = m_isCutOut ? 0 : std::min(largestRadius, height() / 2);
    painter->setPen(Qt::NoPen);
    painter->setBrush(m_palette.red);
    painter->drawRoundedRect(boundingRect(), radius, radius);
    painter->setPen(m_palette.onColor);
    painter->setFont(m_font);
    painter->drawText(boundingRect(), Qt::AlignCenter, m_text);
}
