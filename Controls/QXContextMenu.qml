import QtQuick
import Quorvix.Controls

/// A small menu that opens at a point and stays inside the window. Its items are QXMenuItem.
///
/// The item of a page that the menu is about stays visible: it is lifted over the dimmed screen, and the menu opens
/// below or above it. If there is no room for both, only the beginning of the item is lifted.
QXModal {
    id: root

    property point origin
    /// The page of the items that the menus are about; null for none that are lifted.
    property Flickable page: null
    /// The visible part of the item that the menu is about; empty if it is not lifted.
    property rect shownPart
    /// The part that is lifted.
    readonly property rect subject: Qt.rect(shownPart.x, shownPart.y, shownPart.width,
                                            fitsAbove || fitsBelow ? shownPart.height : Math.max(0, lowest - shownPart.y))
    default property alias items: column.data

    readonly property real edge: QXTheme.spacing
    readonly property bool fitsAbove: shownPart.y - card.height >= 2 * edge
    /// The lower end of an item that leaves room for the menu.
    readonly property real lowest: height - card.height - 2 * edge
    readonly property bool fitsBelow: shownPart.y + shownPart.height <= lowest

    objectName: "QXContextMenu"
    scrim: QXTheme.menuScrim

    Accessible.role: Accessible.PopupMenu
    Accessible.name: qsTranslate("Quorvix", "Actions")

    Keys.onUpPressed: column.step(-1)
    Keys.onDownPressed: column.step(1)

    onDismissRequested: root.presented = false

    QXLiftedPart {
        objectName: "QXContextMenuSubject"
        page: root.page
        part: root.subject
        progress: root.progress
    }

    QXShadow {
        card: card
        strength: root.progress
    }

    QXCard {
        id: card

        readonly property real wanted: QXTheme.isMirrored ? root.origin.x - width : root.origin.x
        readonly property bool isLifted: root.subject.height > 0
        readonly property real above: isLifted ? root.subject.y - root.edge : Math.min(root.origin.y, root.height - root.edge)
        readonly property real below: isLifted ? root.subject.y + root.subject.height + root.edge : root.origin.y

        objectName: "QXContextMenuCard"
        x: Math.max(root.edge, Math.min(wanted, root.width - width - root.edge))
        y: Math.max(root.edge, below + height <= root.height - root.edge ? below : above - height)
        width: Math.min(220 * Math.max(1, QXTheme.scale), root.width - 2 * root.edge)
        height: Math.min(column.implicitHeight + 2 * border.width, root.height - 2 * root.edge)
        radius: QXTheme.cornerRadius
        opacity: root.progress
        scale: root.presented ? 0.9 + 0.1 * root.progress : 1

        QXScrollArea {
            id: scroller

            anchors.fill: parent
            anchors.margins: card.border.width
            contentHeight: column.implicitHeight

            QXMenuColumn {
                id: column

                width: scroller.width
                scrollArea: scroller
                onCloseRequested: root.presented = false
            }
        }

        QXScrollHint {
            area: scroller
            ground: card.color
            radius: card.radius
        }
    }

    /// Opens the menu with its corner at a point of @p item.
    function open(item: Item, x: real, y: real) {
        root.origin = root.presentationLayer.mapFromItem(item, x, y);
        root.shownPart = root.page ? root.visiblePart(item) : Qt.rect(0, 0, 0, 0);
        root.presented = true;
    }

    /// The part of an item that its page shows, with the width of the page's column; empty for an item that is too large
    /// to be lifted.
    function visiblePart(item: Item): rect {
        const layer = root.presentationLayer;
        const whole = item.mapToItem(layer, 0, 0, item.width, item.height);
        const shown = root.page.mapToItem(layer, 0, 0, root.page.width, root.page.height);
        const top = Math.max(whole.top, shown.top);
        const height = Math.min(whole.bottom, shown.bottom) - top;
        const isRow = whole.width >= shown.width;
        const margin = isRow ? Math.max(0, QXTheme.columnEdge(whole.width) - QXTheme.margin) : 0;
        const isSmall = whole.height <= (isRow ? shown.height : shown.height / 2);
        return height > 0 && isSmall ? Qt.rect(whole.x + margin, top, whole.width - 2 * margin, height)
                                     : Qt.rect(0, 0, 0, 0);
    }
}
