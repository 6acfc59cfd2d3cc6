import QtQuick
import Quorvix.Controls

/// One action of the share sheet.
QXPressable {
    id: root

    required property string symbol
    property bool isLast: false
    /// Scrolls to the action when it gets the keyboard focus.
    property QXScrollArea scrollArea: null

    width: parent?.width ?? implicitWidth
    implicitWidth: 200
    implicitHeight: Math.max(52, label.implicitHeight + 2 * QXTheme.spacing)

    onVisualFocusChanged: {
        if (visualFocus)
            scrollArea?.reveal(root);
    }

    background: Rectangle {
        radius: QXTheme.cornerRadius
        color: root.pressed ? QXTheme.pressedFill : "transparent"

        QXFocusRing {
            anchors.fill: parent
            visible: root.visualFocus
        }

        QXSeparator {
            anchors.left: parent.left
            anchors.leftMargin: QXTheme.margin
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            visible: !root.isLast
        }
    }

    QXText {
        id: label

        anchors.left: parent.left
        anchors.leftMargin: QXTheme.margin
        anchors.right: icon.left
        anchors.rightMargin: QXTheme.spacing
        anchors.verticalCenter: parent.verticalCenter
        text: root.text
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    QXIcon {
        id: icon

        anchors.right: parent.right
        anchors.rightMargin: QXTheme.margin
        anchors.verticalCenter: parent.verticalCenter
        symbol: root.symbol
    }
}
