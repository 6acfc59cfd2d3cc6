#pragma once

#include <QtGui/QColor>

#include <cmath>

/// The contrast of colours as WCAG 2.1 defines it.
namespace Contrast {

/// WCAG 2.1, "relative luminance".
inline double luminance(const QColor &color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// The visible colour of a possibly transparent colour on a background.
inline QColor over(const QColor &color, const QColor &ground)
{
    const auto mixed = [&](float part, float below) {
        return part * color.alphaF() + below * (1 - color.alphaF());
    };
    return QColor::fromRgbF(mixed(color.redF(), ground.redF()), mixed(color.greenF(), ground.greenF()),
                            mixed(color.blueF(), ground.blueF()));
}

/// WCAG 2.1, "contrast ratio".
inline double ratio(const QColor &color, const QColor &ground)
{
    const double one = luminance(over(color, ground));
    const double other = luminance(ground);
    return (qMax(one, other) + 0.05) / (qMin(one, other) + 0.05);
}

} // namespace Contrast
