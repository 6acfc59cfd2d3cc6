import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A symbol in a navigation bar.
T.AbstractButton {
    id: root

    required property string symbol
    property color color: QXTheme.link
    property real symbolSize: QXTheme.symbolSize

    implicitWidth: QXTheme.touchTarget
    implicitHeight: QXTheme.touchTarget
    focusPolicy: Qt.StrongFocus
    opacity: enabled ? (pressed ? 0.4 : 1) : 0.35

    contentItem: Item {
        QXIcon {
            anchors.centerIn: parent
            symbol: root.symbol
            color: root.color
            size: root.symbolSize
            mirror: root.mirrored && root.symbol.startsWith("chevron")
        }
    }
    background: QXFocusRing {
        visible: root.visualFocus
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
