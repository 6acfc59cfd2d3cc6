import QtQuick
import Quorvix.Controls
import Quorvix.Text

/// A rounded block as high as its text, which is painted only where the page shows it.
///
/// The painted part is a child of the page itself, not of the page's moving content: far down in a long text
/// the single-precision coordinates of the scene are too coarse, and the text would shake.
Item {
    id: root

    required property Flickable page
    required property QXTextDocument document
    property real padding: 12
    /// The background of the text; opaque.
    property color color: QXTheme.secondaryBackground

    readonly property alias hasSelection: view.hasSelection
    readonly property alias view: view

    // Where the block is in the page's viewport, updated before each frame. No binding reads the page, which is
    // deleted before its blocks are.
    property point place
    property real pageHeight: 0

    /// Emitted for Ctrl+C while nothing is selected.
    signal copyRequested
    /// Emitted for a right click, the Menu key, or a long press. The position is in the block's coordinates.
    signal contextMenuRequested(point position)

    implicitHeight: view.contentHeight + 2 * padding
    activeFocusOnTab: true

    Accessible.role: Accessible.StaticText
    Accessible.name: root.document ? root.document.beginning : ""
    Accessible.focusable: true

    Keys.forwardTo: [view]
    Keys.onPressed: event => {
        event.accepted = event.matches(StandardKey.Copy);
        if (event.accepted)
            root.copyRequested();
    }
    Keys.onShortcutOverride: event => event.accepted = event.matches(StandardKey.Copy)
                             || event.matches(StandardKey.SelectAll)

    Component.onCompleted: root.follow()

    Connections {
        target: root.Window.window

        function onAfterAnimating() {
            root.follow();
        }
    }

    Item {
        id: pane

        readonly property real end: Math.min(root.place.y + root.height, root.pageHeight)

        parent: root.page
        x: root.place.x
        y: Math.max(root.place.y, 0)
        width: root.width
        height: Math.max(0, end - y)
        visible: root.visible
        clip: true

        Rectangle {
            id: background

            y: Math.max(root.place.y - pane.y, -radius)
            width: parent.width
            height: Math.min(root.place.y + root.height - pane.y, pane.height + radius) - y
            radius: QXTheme.cornerRadius
            color: root.color
        }

        QXTextView {
            id: view

            objectName: "QXTextView"
            x: root.padding
            y: Math.max(root.place.y + root.padding - pane.y, 0)
            width: Math.max(0, parent.width - 2 * root.padding)
            height: Math.max(0, Math.min(pane.height, root.place.y + root.height - root.padding - pane.y) - y)
            scrollOffset: pane.y + y - root.place.y - root.padding
            document: root.document
            font: QXTheme.monospaced
            color: QXTheme.label
            marginColor: QXTheme.secondaryLabel
            fillColor: root.color
            selectionColor: QXTheme.selection
            selectedTextColor: QXTheme.onColor
            markColor: QXTheme.mark
            focusItem: root
            Accessible.ignored: true

            onContextMenuRequested: position => root.contextMenuRequested(view.mapToItem(root, position))
            onRevealRequested: (top, bottom) => root.reveal(top, bottom)
            onTopRowMoved: distance => root.page.contentY += distance
        }

        QXTextHandles {
            view: view
        }

        QXFocusRing {
            anchors.fill: background
            visible: root.activeFocus && !root.hasSelection
        }
    }

    function follow() {
        const origin = root.mapToItem(root.page, 0, 0);
        root.place = Qt.point(Math.round(origin.x), Math.round(origin.y));
        root.pageHeight = root.page.height;
    }

    function copySelection() {
        view.copySelection();
    }

    function selectAll() {
        view.selectAll();
    }

    /// Scrolls the page to these heights of the text. When the page cannot show both, it shows the upper one.
    function reveal(top: real, bottom: real) {
        const inset = root.padding;
        const origin = root.mapToItem(root.page, 0, inset).y + root.page.contentY;
        const lowest = Math.max(root.page.contentY, origin + bottom + inset - root.page.height);
        root.page.contentY = Math.min(lowest, origin + top - inset);
        root.follow();
    }
}
