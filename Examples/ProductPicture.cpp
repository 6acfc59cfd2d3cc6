#include "Examples/ProductPicture.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

namespace {

constexpr int edge = 480;
/// Things are drawn on a square of 100 by 100; this is the y position of the ground that they stand on.
constexpr double ground = 86;

/// A gradient for a round body with light from the upper left: brighter on the left, darker on the right.
QBrush round(const QColor &colour, double left, double right)
{
    QLinearGradient gradient(left, 0, right, 0);
    gradient.setColorAt(0, colour.lighter(106));
    gradient.setColorAt(0.3, colour.lighter(116));
    gradient.setColorAt(0.65, colour);
    gradient.setColorAt(1, colour.darker(128));
    return gradient;
}

void shadow(QPainter &painter, double halfWidth)
{
    QRadialGradient gradient(0, 0, 1);
    gradient.setColorAt(0, QColor(40, 25, 10, 90));
    gradient.setColorAt(0.6, QColor(40, 25, 10, 35));
    gradient.setColorAt(1, QColor(40, 25, 10, 0));
    painter.save();
    painter.translate(52, ground);
    painter.scale(halfWidth * 1.35, 4.5);
    painter.setBrush(gradient);
    painter.drawEllipse(QPointF(), 1, 1);
    painter.restore();
}

/// Draws a body that is symmetrical about the vertical middle axis, from @p top down to @p bottom.
void drawSymmetricalBody(QPainter &painter, const QColor &colour, double top, double topRadius, double bellyY,
                         double belly, double bottom, double bottomRadius)
{
    QPainterPath path(QPointF(50 - topRadius, top));
    const double upper = (top + bellyY) / 2;
    const double lower = (bellyY + bottom) / 2;
    path.cubicTo(50 - topRadius, upper, 50 - belly, upper, 50 - belly, bellyY);
    path.cubicTo(50 - belly, lower, 50 - bottomRadius, lower + 4, 50 - bottomRadius, bottom);
    path.quadTo(50, bottom + 2.4, 50 + bottomRadius, bottom);
    path.cubicTo(50 + bottomRadius, lower + 4, 50 + belly, lower, 50 + belly, bellyY);
    path.cubicTo(50 + belly, upper, 50 + topRadius, upper, 50 + topRadius, top);
    path.closeSubpath();
    painter.setBrush(round(colour, 50 - belly, 50 + belly));
    painter.drawPath(path);
}

void opening(QPainter &painter, const QColor &colour, double y, double radius, double depth)
{
    painter.setBrush(colour.lighter(118));
    painter.drawEllipse(QPointF(50, y), radius, depth);
    painter.setBrush(colour.darker(190));
    painter.drawEllipse(QPointF(50, y + 0.2), radius * 0.86, depth * 0.72);
}

void stem(QPainter &painter, const QColor &colour, QPointF from, QPointF to, int leaves)
{
    painter.save();
    painter.setPen(QPen(colour.darker(125), 0.9, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(from, to);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < leaves; ++i) {
        const QPointF at = from + (to - from) * (0.45 + 0.55 * i / std::max(1, leaves - 1));
        painter.save();
        painter.translate(at);
        painter.rotate((i % 2 ? 38 : -38) + (to.x() - from.x()) * 1.6);
        painter.setBrush(i % 2 ? colour : colour.lighter(114));
        QPainterPath leaf;
        leaf.cubicTo(-5, -3, -4, -10, 0, -13);
        leaf.cubicTo(4, -10, 5, -3, 0, 0);
        painter.drawPath(leaf);
        painter.restore();
    }
    painter.restore();
}

void legs(QPainter &painter, const QColor &colour, std::initializer_list<QLineF> lines)
{
    painter.save();
    for (const QLineF &line : lines) {
        painter.setPen(QPen(colour, 3.2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(line);
    }
    painter.restore();
}

void vase(QPainter &painter, const QColor &colour, const QColor &accent)
{
    shadow(painter, 22);
    stem(painter, QColor(0x7d, 0x8f, 0x69), {50, 40}, {39, 17}, 6);
    stem(painter, QColor(0x93, 0xa3, 0x7a), {50, 40}, {62, 20}, 5);
    drawSymmetricalBody(painter, colour, 36, 8, 63, 22, ground, 12);
    opening(painter, colour, 36, 8, 2.2);
    painter.setPen(QPen(accent, 1.1));
    painter.drawArc(QRectF(29.2, 56, 41.6, 9), 190 * 16, 160 * 16);
}

void bottle(QPainter &painter, const QColor &colour, const QColor &accent)
{
    shadow(painter, 17);
    stem(painter, QColor(0xc9, 0x9a, 0x6b), {50, 30}, {55, 15}, 4);
    drawSymmetricalBody(painter, colour, 28, 3.8, 68, 17, ground, 13);
    opening(painter, colour, 28, 3.8, 1.2);
    painter.setBrush(QColor(accent.red(), accent.green(), accent.blue(), 90));
    painter.drawEllipse(QPointF(42, 66), 2.2, 9);
}

void lamp(QPainter &painter, const QColor &colour, const QColor &accent)
{
    shadow(painter, 20);
    QRadialGradient glow(50, 44, 46);
    glow.setColorAt(0, QColor(255, 226, 150, 150));
    glow.setColorAt(1, QColor(255, 226, 150, 0));
    painter.setBrush(glow);
    painter.drawEllipse(QPointF(50, 44), 46, 46);
    drawSymmetricalBody(painter, accent, 48, 3, 74, 13, ground, 9);
    QPainterPath shade(QPointF(38, 16));
    shade.lineTo(62, 16);
    shade.lineTo(76, 50);
    shade.quadTo(50, 55, 24, 50);
    shade.closeSubpath();
    painter.setBrush(round(colour, 24, 76));
    painter.drawPath(shade);
}

void pendant(QPainter &painter, const QColor &colour, const QColor &accent)
{
    painter.setPen(QPen(QColor(0x4a, 0x42, 0x3a), 0.9));
    painter.drawLine(QPointF(50, 0), QPointF(50, 34));
    painter.setPen(Qt::NoPen);
    QLinearGradient cone(0, 62, 0, 100);
    cone.setColorAt(0, QColor(accent.red(), accent.green(), accent.blue(), 150));
    cone.setColorAt(1, QColor(accent.red(), accent.green(), accent.blue(), 0));
    painter.setBrush(cone);
    painter.drawPolygon(QPolygonF{{18, 62}, {82, 62}, {98, 100}, {2, 100}});
    QPainterPath dome(QPointF(16, 62));
    dome.cubicTo(16, 42, 34, 34, 50, 34);
    dome.cubicTo(66, 34, 84, 42, 84, 62);
    dome.closeSubpath();
    painter.setBrush(round(colour, 16, 84));
    painter.drawPath(dome);
    painter.setBrush(accent);
    painter.drawEllipse(QPointF(50, 62), 34, 4.2);
    painter.setBrush(colour.darker(150));
    painter.drawRoundedRect(QRectF(46, 29, 8, 7), 2, 2);
}

void chair(QPainter &painter, const QColor &colour, const QColor &accent)
{
    shadow(painter, 26);
    legs(painter, colour.darker(135), {{36, 58, 33, 82}, {66, 58, 69, 82}});
    legs(painter, colour, {{31, 22, 32, 60}, {69, 22, 68, 60}, {30, 60, 26, ground}, {70, 60, 74, ground}});
    painter.setBrush(round(colour, 28, 72));
    painter.drawRoundedRect(QRectF(28, 18, 44, 10), 5, 5);
    painter.drawRoundedRect(QRectF(31, 35, 38, 5), 2.5, 2.5);
    painter.setBrush(round(accent, 24, 76));
    painter.drawRoundedRect(QRectF(25, 54, 50, 9), 4, 4);
    painter.setPen(QPen(accent.darker(118), 0.5));
    for (int x = 29; x < 74; x += 4)
        painter.drawLine(QPointF(x, 55.5), QPointF(x, 61.5));
}

void stool(QPainter &painter, const QColor &colour, const QColor &accent)
{
    shadow(painter, 24);
    legs(painter, accent.darker(130), {{50, 46, 50, 80}});
    legs(painter, accent, {{36, 46, 28, ground}, {64, 46, 72, ground}});
    painter.setBrush(round(colour, 24, 76));
    painter.drawRoundedRect(QRectF(24, 39, 52, 10), 5, 5);
    painter.setBrush(colour.lighter(110));
    painter.drawEllipse(QPointF(50, 40.5), 26, 5);
}

void mug(QPainter &painter, const QColor &colour, const QColor &accent)
{
    shadow(painter, 25);
    painter.setPen(QPen(colour.darker(112), 5, Qt::SolidLine, Qt::RoundCap));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QPointF(72, 62), 10, 12);
    painter.setPen(Qt::NoPen);
    drawSymmetricalBody(painter, colour, 40, 24, 60, 24, ground, 19);
    opening(painter, accent, 40, 24, 5);
    painter.setBrush(QColor(0x5e, 0x3d, 0x2a));
    painter.drawEllipse(QPointF(50, 40.6), 20.2, 3.4);
    QLinearGradient glaze(0, 40, 0, 58);
    glaze.setColorAt(0, accent);
    glaze.setColorAt(1, QColor(accent.red(), accent.green(), accent.blue(), 0));
    QPainterPath drip(QPointF(26, 40.5));
    drip.cubicTo(30, 60, 34, 44, 42, 54);
    drip.cubicTo(48, 62, 54, 46, 60, 53);
    drip.cubicTo(66, 58, 70, 48, 74, 40.5);
    drip.quadTo(50, 51, 26, 40.5);
    painter.setBrush(glaze);
    painter.drawPath(drip);
}

void bowl(QPainter &painter, const QColor &colour, const QColor &accent)
{
    shadow(painter, 26);
    QPainterPath path(QPointF(12, 50));
    path.cubicTo(14, 74, 32, 84, 38, ground - 1);
    path.quadTo(50, ground + 2, 62, ground - 1);
    path.cubicTo(68, 84, 86, 74, 88, 50);
    path.closeSubpath();
    painter.setBrush(round(colour, 12, 88));
    painter.drawPath(path);
    painter.setBrush(accent);
    painter.drawEllipse(QPointF(50, 50), 38, 8);
    painter.setBrush(round(accent.darker(116), 16, 84));
    painter.drawEllipse(QPointF(50, 51), 34.5, 6.4);
}

void planter(QPainter &painter, const QColor &colour, const QColor &accent)
{
    shadow(painter, 21);
    stem(painter, accent.darker(112), {50, 56}, {28, 26}, 5);
    stem(painter, accent.darker(112), {50, 56}, {73, 28}, 5);
    stem(painter, accent, {50, 56}, {41, 15}, 6);
    stem(painter, accent.lighter(108), {50, 56}, {58, 13}, 6);
    painter.setBrush(round(colour, 29, 71));
    painter.drawPolygon(QPolygonF{{31, 58}, {69, 58}, {64, ground}, {36, ground}});
    painter.drawRoundedRect(QRectF(28.5, 54, 43, 8), 2.4, 2.4);
}

void clock(QPainter &painter, const QColor &colour, const QColor &accent)
{
    painter.setBrush(QColor(40, 25, 10, 34));
    painter.drawEllipse(QPointF(52, 53), 37, 37);
    painter.setBrush(round(accent, 14, 86));
    painter.drawEllipse(QPointF(50, 50), 36, 36);
    painter.setBrush(colour);
    painter.drawEllipse(QPointF(50, 50), 32, 32);
    painter.translate(50, 50);
    for (int hour = 0; hour < 12; ++hour) {
        painter.setPen(QPen(accent, hour % 3 ? 0.9 : 2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -28), QPointF(0, hour % 3 ? -25.5 : -24));
        painter.rotate(30);
    }
    painter.setPen(QPen(accent.darker(140), 2.4, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(), QPointF(-13, -9));
    painter.drawLine(QPointF(), QPointF(12, -18));
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent.darker(140));
    painter.drawEllipse(QPointF(), 2.4, 2.4);
}

} // namespace

QImage ProductPicture::draw(Kind kind, QRgb colour, QRgb accent)
{
    // In the order of Kind.
    static constexpr void (*things[])(QPainter &, const QColor &, const QColor &) = {
        vase, bottle, lamp, pendant, chair, stool, mug, bowl, planter, clock};
    QImage image(edge, edge, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(edge / 100.0, edge / 100.0);
    things[static_cast<size_t>(kind)](painter, QColor(colour), QColor(accent));
    return image;
}
