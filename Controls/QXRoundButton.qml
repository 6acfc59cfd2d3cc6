import QtQuick
import Quorvix.Controls

/// A symbol on a coloured disc.
QXFadingButton {
    id: root

    required property string symbol
    property color color: QXTheme.pink

    implicitWidth: QXTheme.touchTarget
    implicitHeight: QXTheme.touchTarget
    pressedOpacity: 0.6

    contentItem: Item {
        QXIcon {
            anchors.centerIn: parent
            symbol: root.symbol
            color: QXTheme.onColor
        }
    }
    background: Rectangle {
        radius: width / 2
        color: root.color

        QXFocusRing {
            anchors.fill: parent
            anchors.margins: -3
            radius: width / 2
            visible: root.visualFocus
        }
    }
}
