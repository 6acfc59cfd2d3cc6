#pragma once

#include <QtCore/QObject>
#include <QtGui/QColor>
#include <QtQml/qqmlregistration.h>

/// The colours of what is painted without QML; QXTheme has them for QML, too.
struct QXPalette
{
    Q_GADGET
    QML_VALUE_TYPE(qxPalette)
    Q_PROPERTY(QColor label MEMBER label CONSTANT)
    Q_PROPERTY(QColor pressedFill MEMBER pressedFill CONSTANT)
    /// The border of a field and the track of a switch that is off, with enough contrast to any background.
    Q_PROPERTY(QColor outline MEMBER outline CONSTANT)
    /// The fill of the floating button where the content beneath cannot be blurred.
    Q_PROPERTY(QColor material MEMBER material CONSTANT)
    Q_PROPERTY(QColor materialEdge MEMBER materialEdge CONSTANT)
    Q_PROPERTY(QColor red MEMBER red CONSTANT)
    Q_PROPERTY(QColor blue MEMBER blue CONSTANT)
    /// Text on a fill of any colour.
    Q_PROPERTY(QColor onColor MEMBER onColor CONSTANT)
    Q_PROPERTY(QColor shadow MEMBER shadow CONSTANT)

public:
    [[nodiscard]] static QXPalette light() { return {}; }
    [[nodiscard]] static QXPalette dark()
    {
        QXPalette palette;
        palette.label = {0xff, 0xff, 0xff};
        palette.pressedFill = {0x76, 0x76, 0x80, 0x5c};
        palette.outline = {0x5f, 0x5f, 0x64};
        palette.material = {0x32, 0x32, 0x36};
        palette.red = {0xff, 0x45, 0x3a};
        palette.blue = {0x0a, 0x84, 0xff};
        return palette;
    }

    QColor label{0x00, 0x00, 0x00};
    QColor pressedFill{0x76, 0x76, 0x80, 0x33};
    QColor outline{0x8e, 0x8e, 0x93};
    QColor material{0xf8, 0xf8, 0xfb};
    QColor materialEdge{0xff, 0xff, 0xff, 0x59};
    QColor red{0xff, 0x3b, 0x30};
    QColor blue{0x00, 0x7a, 0xff};
    QColor onColor{0xff, 0xff, 0xff};
    QColor shadow{0x00, 0x00, 0x00, 0x26};
};
