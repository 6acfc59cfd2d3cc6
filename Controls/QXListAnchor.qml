import QtQuick

/// Keeps the visible rows in place while a list grows at its top. A list at its very top shows the newest row.
Item {
    id: root

    required property ListView view
    /// Whether new rows leave the current row in view, even in a list at its very top.
    property bool keepsCurrentRow: false

    property bool holds: false
    property bool reveals: false
    property int anchorRow: -1
    property real anchorOffset: 0

    function hold() {
        root.anchorRow = root.view.indexAt(0, root.view.contentY + 1);
        const item = root.view.itemAtIndex(root.anchorRow);
        root.holds = item !== null && root.view.contentY > root.view.originY - root.view.topMargin + 1;
        root.reveals = root.keepsCurrentRow;
        if (root.holds)
            root.anchorOffset = item.y - root.view.contentY;
    }

    function restore() {
        root.view.forceLayout();
        const item = root.holds ? root.view.itemAtIndex(root.anchorRow) : null;
        if (item)
            root.moveTo(item.y - root.anchorOffset);
        else if (!root.holds)
            root.moveTo(root.view.originY - root.view.topMargin);
        if (root.reveals)
            root.revealCurrentRow();
    }

    function revealCurrentRow() {
        const item = root.view.currentItem;
        if (item && (item.y < root.view.contentY
                     || item.y + item.height > root.view.contentY + root.view.height - root.view.bottomMargin))
            root.view.positionViewAtIndex(root.view.currentIndex, ListView.Center);
    }

    function moveTo(position: real) {
        // An assignment stops a flick, so it is made only when the view did not keep its position.
        if (Math.abs(position - root.view.contentY) > 0.5)
            root.view.contentY = position;
    }

    // The view handles the new rows after this item.
    Timer {
        id: later

        interval: 0
        onTriggered: root.restore()
    }

    Connections {
        target: root.view.model

        function onRowsAboutToBeInserted(parent: var, first: int, last: int) {
            if (!later.running)
                root.hold();
            if (first <= root.anchorRow)
                root.anchorRow += last - first + 1;
        }

        function onRowsInserted(parent: var, first: int, last: int) {
            later.start();
        }

        function onModelAboutToBeReset() {
            later.stop();
            root.view.currentIndex = -1; // the row that had this index may have another one now
        }
    }
}
