import QtQuick

/// Keeps in place what the user reads in a list that grows at its top; at the very top the newest row shows.
Item {
    id: root

    required property ListView view

    property bool holds: false
    property int anchorRow: -1
    property real anchorOffset: 0

    function hold() {
        root.anchorRow = root.view.indexAt(0, root.view.contentY + 1);
        const item = root.view.itemAtIndex(root.anchorRow);
        root.holds = item !== null && root.view.contentY > root.view.originY - root.view.topMargin + 1;
        if (root.holds)
            root.anchorOffset = item.y - root.view.contentY;
    }

    function restore() {
        root.view.forceLayout();
        if (!root.holds) {
            root.moveTo(root.view.originY - root.view.topMargin);
            return;
        }
        const item = root.view.itemAtIndex(root.anchorRow);
        if (item)
            root.moveTo(item.y - root.anchorOffset);
    }

    function moveTo(position: real) {
        // Setting it stops a flick: only where the view has not kept its place by itself.
        if (Math.abs(position - root.view.contentY) > 0.5)
            root.view.contentY = position;
    }

    // The view learns of the rows after us.
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
        }
    }
}
