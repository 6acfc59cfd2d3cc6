import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A symbol on a coloured disc.
T.AbstractButton {
    id: root

    required property string symbol
    property color color: QXTheme.pink

    implicitWidth: QXTheme.touchTarget
    implicitHeight: QXTheme.touchTarget
    focusPolicy: Qt.StrongFocus
    opacity: enabled ? (pressed ? 0.6 : 1) : 0.35

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

    Accessible.name: text
    Accessible.role: Accessible.Button

    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    Behavior on opacity {
        NumberAnimation {
            duration: 120
        }
    }
}
