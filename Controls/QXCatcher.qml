import QtQuick
import Quorvix.Controls

/// Lets a pointer catch a view while it moves, and keeps presses from what is beneath. The place where the pointer
/// can catch the view must not move with it.
MouseArea {
    id: root

    required property QXGlide glide
    property bool isVertical: false
    /// -1 when the view leaves to the left or to the top.
    property real direction: 1

    objectName: "QXCatcher"
    enabled: root.glide.isMoving && (root.pressed || !root.glide.isHeld)
    preventStealing: true

    onPressed: mouse => root.glide.hold(root.placeOf(mouse))
    onPositionChanged: mouse => root.glide.follow(root.placeOf(mouse))
    onReleased: root.glide.release()
    onCanceled: root.glide.release()
    onWheel: wheel => wheel.accepted = true

    function placeOf(mouse: var): real {
        return root.direction * (root.isVertical ? mouse.y : mouse.x);
    }
}
