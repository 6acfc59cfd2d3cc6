import QtQuick

/// The items of a menu or a dialog in a column. The arrow keys move between them, and only one can be chosen.
Column {
    id: root

    /// Emitted when an item is chosen. The menu has to close before the item's action runs.
    signal closeRequested

    /// Scrolls to an item when it gets the keyboard focus.
    property QXScrollArea scrollArea: null
    /// The item that the arrow keys reach after the last one; null for none.
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

    /// Moves the keyboard focus to the next or previous visible item, and from one end to the other.
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
