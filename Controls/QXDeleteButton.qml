import QtQuick
import Quorvix.Controls

/// The button that appears when the user swipes a row.
QXPressable {
    id: root

    implicitWidth: Math.max(88, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: QXTheme.touchTarget
    horizontalPadding: QXTheme.margin
    focusPolicy: Qt.NoFocus
    text: qsTranslate("Quorvix", "Delete")

    background: Rectangle {
        color: QXTheme.destructive
        opacity: root.pressed ? 0.7 : 1
    }
    contentItem: QXText {
        text: root.text
        font: QXTheme.subheadline
        color: QXTheme.onColor
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
