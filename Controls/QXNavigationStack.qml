import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A stack of screens; the one on top has the keyboard focus. A swipe from the edge at the back button's side
/// removes it.
T.StackView {
    id: root

    readonly property real direction: mirrored ? -1 : 1
    /// The horizontal position of a screen that another one covers.
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
            // The covered screen may be on top now.
            if (settle.covered && settle.covered !== root.currentItem)
                settle.covered.visible = false;
        }
    }

    /// Moves the top screen sideways by a distance and shows the screen beneath.
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

    /// Ends a swipe: removes the screen when it moved far or fast enough, otherwise moves it back. The velocity
    /// is in pixels per second.
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
