import QtQuick
import Quorvix.Controls

/// A button in a navigation bar that shows a symbol.
QXFadingButton {
    id: root

    required property string symbol
    property color color: QXTheme.link
    property real symbolSize: QXTheme.symbolSize

    implicitWidth: QXTheme.touchTarget
    implicitHeight: QXTheme.touchTarget

    contentItem: Item {
        QXIcon {
            anchors.centerIn: parent
            symbol: root.symbol
            color: root.color
            size: root.symbolSize
            mirror: root.mirrored && root.symbol.startsWith("chevron")
        }
    }
}
