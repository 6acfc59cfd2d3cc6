import QtQuick

/// The items of a menu or a dialog, one below the other: walked with the arrow keys, chosen once.
Column {
    id: root

    /// Something has been chosen; the menu has to be gone before it is acted on.
    signal closeRequested

    /// Brings an item into view when the keyboard comes to it.
    property QXScrollArea scrollArea: null
    /// What the arrow keys come to after the last item; null for nothing.
    property QXMenuItem after: null

    Keys.onUpPressed: root.step(-1)
    Keys.onDownPressed: root.step(1)

    Component.onCompleted: {
        for (const item of root.items()) {
            item.isLast = Qt.binding(() => item === root.lastVisible());
            item.clicked.connect(() => root.choose(item));
        }
    }

    function items(): var {
        return Array.from(root.children).filter(child => child instanceof QXMenuItem);
    }

    function lastVisible(): Item {
        return root.items().filter(item => item.visible).pop() ?? null;
    }

    function choose(item: QXMenuItem) {
        root.closeRequested();
        item.triggered();
    }

    /// Moves the keyboard to the next visible item, or the one before, and round at the ends.
    function step(by: int) {
        const visible = root.items().concat(root.after ?? []).filter(item => item.visible && item.enabled);
        if (visible.length === 0)
            return;
        const current = visible.findIndex(item => item.activeFocus);
        const next = current < 0 && by > 0 ? 0 : Math.max(0, current) + by;
        const item = visible[(next + visible.length) % visible.length];
        item.forceActiveFocus(Qt.TabFocusReason);
        if (item !== root.after)
            root.scrollArea?.reveal(item);
    }
}
