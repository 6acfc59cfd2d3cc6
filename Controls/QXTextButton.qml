import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A word that does something: in a bar, beside a caption, or under an alert.
T.AbstractButton {
    id: root

    property color color: QXTheme.link

    implicitWidth: Math.max(QXTheme.touchTarget, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(QXTheme.touchTarget, implicitContentHeight + QXTheme.spacing)
    horizontalPadding: QXTheme.spacing
    focusPolicy: Qt.StrongFocus
    font: QXTheme.body
    opacity: enabled ? (pressed ? 0.4 : 1) : 0.35

    contentItem: QXText {
        text: root.text
        font: root.font
        color: root.color
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
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
