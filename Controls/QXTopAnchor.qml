import QtQuick

/// Keeps what is at the top of a scrolled page there while the page becomes wider or narrower, and the rows
/// above get other heights.
Item {
    id: root

    required property Flickable view
    required property Column column
    /// Whether the page has been scrolled.
    required property bool isScrolled

    property Item held: null
    property real offset: 0
    property bool restores: false

    Connections {
        target: root.view

        function onWidthChanged() {
            // A window that is dragged keeps its first item, so that rounding does not add up.
            if (!later.running)
                root.hold();
            later.restart();
        }

        function onMovementStarted() {
            later.stop();
        }

        // A text moves its page when its rows are broken for another width.
        function onContentYChanged() {
            if (later.running && !root.restores && root.held)
                root.offset = root.view.contentY - root.topOf(root.held);
        }
    }

    Connections {
        target: root.column

        function onPositioningComplete() {
            if (later.running)
                root.restore();
        }
    }

    // The heights change over a few frames.
    Timer {
        id: later

        interval: 300
        onTriggered: root.held = null
    }

    function topOf(item: Item): real {
        return item.mapToItem(root.view.contentItem, 0, 0).y;
    }

    /// Notes the innermost row at the top: rows are items of columns.
    function hold() {
        root.held = null;
        let row = root.isScrolled ? root.column.childAt(root.column.width / 2, root.view.contentY + 1) : null;
        while (row) {
            root.held = row;
            const inner = row as Column;
            row = inner ? inner.childAt(inner.width / 2, root.view.contentY + 1 - root.topOf(inner)) : null;
        }
        if (root.held)
            root.offset = root.view.contentY - root.topOf(root.held);
    }

    function restore() {
        if (!root.held)
            return;
        root.restores = true;
        root.view.contentY = root.topOf(root.held) + Math.min(root.offset, root.held.height);
        root.restores = false;
    }
}
