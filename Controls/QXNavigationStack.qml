import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// Screens in one column, each pushed over the one before; the one on top has the keyboard. A finger that comes in
/// from the side of the back button takes it away.
T.StackView {
    id: root

    readonly property real direction: mirrored ? -1 : 1
    /// Where a screen lies while another one covers it.
    readonly property real beneath: -width * 0.3 * direction

    clip: true

    pushEnter: Transition {
        NumberAnimation {
            property: "x"
            from: root.width * root.direction
            to: 0
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }
    pushExit: Transition {
        NumberAnimation {
            property: "x"
            from: 0
            to: root.beneath
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }
    popEnter: Transition {
        NumberAnimation {
            property: "x"
            to: 0
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }
    popExit: Transition {
        NumberAnimation {
            property: "x"
            to: root.width * root.direction
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }

    Item {
        z: 1
        anchors.left: parent.left
        width: 20
        height: parent.height

        DragHandler {
            target: null
            acceptedDevices: PointerDevice.TouchScreen
            enabled: root.depth > 1 && (active || !root.busy)
            yAxis.enabled: false
            onActiveTranslationChanged: {
                if (active)
                    root.uncover(activeTranslation.x * root.direction);
            }
            onActiveChanged: {
                if (!active)
                    root.release(activeTranslation.x * root.direction, centroid.velocity.x * root.direction);
            }
        }
    }

    NumberAnimation {
        id: settle

        property Item covered: null

        property: "x"
        to: 0
        duration: QXTheme.duration / 2
        easing.type: Easing.OutCubic
        onFinished: {
            // It may have come to the top meanwhile.
            if (settle.covered && settle.covered !== root.currentItem)
                settle.covered.visible = false;
        }
    }

    /// Moves the screen on top aside by a distance.
    function uncover(distance: real) {
        if (root.depth < 2)
            return;
        const covered = root.get(root.depth - 2);
        const moved = Math.max(0, Math.min(distance, root.width));
        settle.stop();
        covered.visible = true;
        covered.x = root.beneath * (1 - moved / root.width);
        root.currentItem.x = moved * root.direction;
    }

    /// Lets it go: away when it has come far or is fast, in pixels per second, and back otherwise.
    function release(distance: real, velocity: real) {
        if (root.depth < 2)
            return;
        if (distance > 0.35 * root.width || velocity > 600) {
            root.pop();
            return;
        }
        settle.covered = root.get(root.depth - 2);
        settle.target = root.currentItem;
        settle.start();
    }

    onCurrentItemChanged: {
        if (currentItem && activeFocus)
            currentItem.forceActiveFocus();
    }
}
