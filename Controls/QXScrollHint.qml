import QtQuick
import Quorvix.Controls

/// A fade at the lower end of an area, while there is more to scroll to. A child of the area's parent.
Rectangle {
    id: root

    required property Flickable area
    /// The colour below what the area shows.
    required property color ground

    objectName: "QXScrollHint"
    anchors.left: area.left
    anchors.right: area.right
    anchors.bottom: area.bottom
    height: Math.min(36, area.height / 3)
    opacity: area.atYEnd ? 0 : 1
    gradient: Gradient {
        GradientStop {
            position: 0
            color: Qt.alpha(root.ground, 0)
        }
        GradientStop {
            position: 1
            color: root.ground
        }
    }

    Behavior on opacity {
        enabled: QXTheme.animates

        NumberAnimation {
            duration: QXTheme.shortDuration
        }
    }
}
