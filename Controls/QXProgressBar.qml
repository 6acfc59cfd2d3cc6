import QtQuick
import Quorvix.Controls

/// How much of a task is done.
Rectangle {
    id: root

    /// From 0 to 1.
    property real value: 0
    readonly property real minimumValue: 0
    readonly property real maximumValue: 1
    readonly property real stepSize: 0

    objectName: "QXProgressBar"
    implicitHeight: 6
    radius: height / 2
    color: QXTheme.fill
    Accessible.role: Accessible.ProgressBar

    Rectangle {
        width: Math.max(parent.height, parent.width * root.value)
        height: parent.height
        radius: parent.radius
        color: QXTheme.blue
        x: QXTheme.isMirrored ? parent.width - width : 0
    }
}
