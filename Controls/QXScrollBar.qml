import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A scroll bar that is visible while the content moves, and for a moment when the content appears. It is wide enough to
/// be dragged, and makes the content follow the wheel.
T.ScrollBar {
    id: root

    /// Whether the user scrolls with the bar or with the wheel, of which the content itself knows nothing.
    readonly property bool isScrolling: pressed || wheel.isMoving

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.06
    Accessible.ignored: true // the keys scroll
    visible: policy !== T.ScrollBar.AlwaysOff && size < 1

    QXWheelScroll {
        id: wheel

        flickable: root.parent
        animates: QXTheme.animates
        lineHeight: 24 * Math.max(1, QXTheme.scale)
    }

    Timer {
        id: flash

        interval: 1200
    }

    contentItem: Rectangle {
        implicitWidth: 5
        implicitHeight: 5
        radius: 3
        color: root.pressed ? QXTheme.secondaryLabel : QXTheme.tertiaryLabel
        opacity: root.active || root.hovered || wheel.isMoving || flash.running ? 1 : 0

        Behavior on opacity {
            enabled: QXTheme.animates

            NumberAnimation {
                duration: QXTheme.duration
            }
        }
    }

    onVisibleChanged: {
        if (visible)
            flash.restart();
    }

    /// Ends what the wheel still moves, before the content gets another position.
    function stop() {
        wheel.stop();
    }
}
