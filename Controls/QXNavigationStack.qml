import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A stack of screens; the one on top has the keyboard focus. A swipe from the edge at the back button's side
/// removes it. A screen that comes or leaves can be caught on its way, and turned round.
///
/// A screen that leaves stays on the stack until it is out of sight, but the one beneath has the focus already.
T.StackView {
    id: root

    readonly property real direction: mirrored ? -1 : 1
    /// The horizontal position of a screen that another one covers.
    readonly property real beneath: -width * 0.3 * direction
    /// The screen beneath the one that moves; null while none moves.
    property Item covered: null

    clip: true

    // The glide moves the screens. Without transitions, Qt would keep removed screens until the next transition.
    pushEnter: Transition {}
    pushExit: Transition {}
    popEnter: Transition {}
    popExit: Transition {}

    QXGlide {
        id: glide

        objectName: "QXStackGlide"
        extent: root.width
        onPositionChanged: root.place()
        onIsOpenChanged: root.moveFocus()
        onSettled: root.settle()
    }

    // Shows that a screen lies beneath another.
    Rectangle {
        parent: (root.covered ?? root) as Item
        anchors.fill: parent
        z: 2
        visible: root.covered !== null
        color: QXTheme.scrim
        opacity: 0.3 * glide.position
    }

    // The edge of the screen that moves, which is as dark as the one beneath in the dark.
    Rectangle {
        x: (1 - glide.position) * root.width * root.direction + (root.mirrored ? root.width : -width)
        z: 1
        width: 1
        height: root.height
        visible: root.covered !== null
        color: QXTheme.separator
    }

    Item {
        z: 1
        anchors.left: parent.left
        width: 20
        height: parent.height

        DragHandler {
            target: null
            acceptedDevices: PointerDevice.TouchScreen
            enabled: root.depth > 1 && (active || !glide.isMoving)
            yAxis.enabled: false
            onCentroidChanged: {
                if (active)
                    glide.follow(centroid.scenePosition.x * root.direction);
            }
            onActiveChanged: {
                if (active) {
                    root.beginMoving();
                    glide.hold(centroid.scenePosition.x * root.direction);
                } else {
                    glide.release();
                }
            }
        }
    }

    QXCatcher {
        anchors.fill: parent
        z: 2
        glide: glide
        direction: root.direction
    }

    onCurrentItemChanged: {
        if (currentItem && activeFocus)
            currentItem.forceActiveFocus();
    }
    onWidthChanged: root.place()

    /// Shows a new screen, which comes in from the side.
    function open(screen: url, properties: var) {
        glide.finish();
        const covered = root.currentItem;
        glide.jump(false);
        root.push(screen, properties);
        root.uncover(covered);
        root.place();
        glide.isOpen = true;
    }

    /// Removes the screen on top, which leaves to the side. One that is leaving already is removed at once.
    function leave() {
        if (!glide.isOpen)
            glide.finish();
        root.beginMoving();
        if (root.covered)
            glide.isOpen = false;
    }

    /// Prepares the screen on top to leave, if there is another one beneath.
    function beginMoving() {
        if (root.covered || root.depth < 2)
            return;
        glide.jump(true);
        root.uncover(root.get(root.depth - 2));
        root.place();
    }

    function uncover(screen: Item) {
        root.covered = screen;
        screen.visible = true;
    }

    function place() {
        if (!root.covered)
            return;
        root.currentItem.x = (1 - glide.position) * root.width * root.direction;
        root.covered.x = root.beneath * glide.position;
    }

    function settle() {
        const covered = root.covered;
        root.covered = null;
        if (glide.isOpen)
            covered.visible = false;
        else
            root.pop();
    }

    function moveFocus() {
        if (root.covered && root.activeFocus)
            (glide.isOpen ? root.currentItem as Item : root.covered).forceActiveFocus();
    }
}
