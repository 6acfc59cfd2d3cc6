import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A scroll bar that is visible while the content moves and is wide enough to be dragged.
T.ScrollBar {
    id: root

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.06
    visible: policy !== T.ScrollBar.AlwaysOff && size < 1

    contentItem: Rectangle {
        implicitWidth: 5
        implicitHeight: 5
        radius: 3
        color: root.pressed ? QXTheme.secondaryLabel : QXTheme.tertiaryLabel
        opacity: root.active || root.hovered ? 1 : 0

        Behavior on opacity {
            NumberAnimation {
                duration: 300
            }
        }
    }
}
