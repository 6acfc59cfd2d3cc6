import QtQuick
import Quorvix.Controls

/// A picture of a part of a page, on a card that seems to lie above the page.
Item {
    id: root

    required property Flickable page
    /// The part of the page, in the coordinates of this item's parent; empty to show nothing.
    property rect part
    /// From 0, where the part lies in the page, to 1.
    property real progress: 1
    /// Where the page is, in the coordinates of this item's parent.
    property point origin

    readonly property real inset: 4

    x: part.x + inset
    y: part.y
    width: Math.max(0, part.width - 2 * inset)
    height: part.height
    visible: part.height > 0 && progress > 0

    QXShadow {
        card: card
        strength: root.progress
    }

    Rectangle {
        id: card

        anchors.fill: parent
        radius: QXTheme.cornerRadius
        color: QXTheme.elevatedBackground
        opacity: root.progress

        ShaderEffectSource {
            anchors.fill: parent
            live: false
            sourceItem: root.visible ? root.page : null
            sourceRect: Qt.rect(root.x - root.origin.x, root.y - root.origin.y, root.width, root.height)
            onSourceRectChanged: scheduleUpdate()
        }
    }

    onPartChanged: root.origin = root.page ? root.page.mapToItem(root.parent, 0, 0) : Qt.point(0, 0)
}
