import QtQuick
import QtQuick.Window
import Quorvix.Controls

/// A symbol in one colour, sharp at any scale.
Image {
    id: root

    required property string symbol
    property color color: QXTheme.label
    property real size: QXTheme.symbolSize

    width: size
    height: size
    fillMode: Image.PreserveAspectFit
    source: "image://symbol/" + symbol + "?color=" + encodeURIComponent(color.toString())
    sourceSize.width: Math.ceil(size * Screen.devicePixelRatio)
    sourceSize.height: Math.ceil(size * Screen.devicePixelRatio)
    Accessible.ignored: true
}
