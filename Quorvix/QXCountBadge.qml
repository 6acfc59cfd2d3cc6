import QtQuick
import Quorvix.Controls

/// The number of exchanges, at the corner of the floating button. Hidden while the text is empty.
Rectangle {
    id: root

    required property string text

    objectName: "QXBadge"
    width: Math.max(height, label.implicitWidth + 12)
    height: label.implicitHeight + 4
    radius: Math.min(10, height / 2)
    visible: text.length > 0
    color: QXTheme.red

    QXText {
        id: label

        objectName: "QXBadgeLabel"
        anchors.centerIn: parent
        text: root.text
        font: Qt.font({
            family: QXTheme.captionBold.family,
            pixelSize: 12,
            weight: Font.Bold
        })
        color: QXTheme.onColor
        Accessible.ignored: true
    }
}
