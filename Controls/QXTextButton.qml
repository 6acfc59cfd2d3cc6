import QtQuick
import Quorvix.Controls

/// A button that shows only its text: in a bar, beside a caption, or in an alert.
QXFadingButton {
    id: root

    property color color: QXTheme.link

    implicitWidth: Math.max(QXTheme.touchTarget, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(QXTheme.touchTarget, implicitContentHeight + QXTheme.spacing)
    horizontalPadding: QXTheme.spacing
    font: QXTheme.body

    contentItem: QXText {
        text: root.text
        font: root.font
        color: root.color
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
