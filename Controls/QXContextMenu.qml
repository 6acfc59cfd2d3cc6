pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls

/// A small menu that opens at a point and stays inside the window. Its items are QXMenuItem.
QXModal {
    id: root

    property point origin
    default property alias items: column.data

    readonly property real edge: QXTheme.spacing

    objectName: "QXContextMenu"
    scrim: QXTheme.menuScrim

    Accessible.role: Accessible.PopupMenu
    Accessible.name: qsTranslate("Quorvix", "Actions")

    Keys.onUpPressed: column.step(-1)
    Keys.onDownPressed: column.step(1)

    onDismissRequested: root.presented = false

    // A few outlines draw a soft shadow around the card.
    Repeater {
        model: 4

        delegate: Rectangle {
            required property int index

            anchors.fill: card
            anchors.margins: -2 * (index + 1)
            anchors.topMargin: -index
            radius: card.radius + 2 * (index + 1)
            color: QXTheme.shadow
            opacity: root.progress * (0.5 - 0.1 * index)
        }
    }

    Rectangle {
        id: card

        readonly property real wanted: QXTheme.isMirrored ? root.origin.x - width : root.origin.x
        readonly property bool fitsBelow: root.origin.y + height <= root.height - root.edge

        objectName: "QXContextMenuCard"
        x: Math.max(root.edge, Math.min(wanted, root.width - width - root.edge))
        y: Math.max(root.edge, fitsBelow ? root.origin.y : Math.min(root.origin.y, root.height - root.edge) - height)
        width: Math.min(220 * Math.max(1, QXTheme.scale), root.width - 2 * root.edge)
        height: Math.min(column.implicitHeight, root.height - 2 * root.edge)
        radius: QXTheme.cornerRadius
        color: QXTheme.elevatedBackground
        opacity: root.progress
        scale: root.presented ? 0.9 + 0.1 * root.progress : 1

        QXScrollArea {
            id: scroller

            anchors.fill: parent
            contentHeight: column.implicitHeight

            QXMenuColumn {
                id: column

                width: card.width
                scrollArea: scroller
                onCloseRequested: root.presented = false
            }
        }
    }

    /// Opens the menu with its corner at a point of @p item.
    function open(item: Item, x: real, y: real) {
        root.origin = root.presentationLayer.mapFromItem(item, x, y);
        root.presented = true;
    }
}
