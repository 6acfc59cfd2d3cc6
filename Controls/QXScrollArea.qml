import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// An area that scrolls by pointer and by keyboard.
Flickable {
    id: root

    /// Emitted after a key has scrolled the area.
    signal keyScrolled

    boundsBehavior: Flickable.StopAtBounds
    clip: true
    interactive: contentHeight + topMargin + bottomMargin > height

    T.ScrollBar.vertical: QXScrollBar {}

    Keys.onPressed: event => {
        event.accepted = root.scrollByKey(event.key);
        if (event.accepted)
            root.keyScrolled();
    }

    onMovementStarted: {
        if (InputMethod.visible)
            InputMethod.hide();
    }

    /// Scrolls for a key such as Page Down. Returns whether the key is one that scrolls.
    function scrollByKey(key: int): bool {
        switch (key) {
        case Qt.Key_Up:
            root.scrollBy(-QXTheme.touchTarget);
            return true;
        case Qt.Key_Down:
            root.scrollBy(QXTheme.touchTarget);
            return true;
        case Qt.Key_PageUp:
            root.scrollBy(-root.height + QXTheme.touchTarget);
            return true;
        case Qt.Key_PageDown:
        case Qt.Key_Space:
            root.scrollBy(root.height - QXTheme.touchTarget);
            return true;
        case Qt.Key_Home:
            root.scrollBy(-Infinity);
            return true;
        case Qt.Key_End:
            root.scrollBy(Infinity);
            return true;
        default:
            return false;
        }
    }

    function scrollBy(distance: real) {
        const highest = -root.topMargin;
        const lowest = Math.max(highest, root.contentHeight + root.bottomMargin - root.height);
        root.contentY = Math.max(highest, Math.min(root.contentY + distance, lowest));
    }

    /// Scrolls to an item. When it is larger than the area, its beginning is visible.
    function reveal(item: Item) {
        const top = item.mapToItem(root.contentItem, 0, 0).y - QXTheme.spacing;
        const bottom = top + Math.min(item.height + 2 * QXTheme.spacing + root.bottomMargin, root.height);
        if (top < root.contentY)
            root.scrollBy(top - root.contentY);
        else if (bottom > root.contentY + root.height)
            root.scrollBy(bottom - root.contentY - root.height);
    }

    /// Scrolls to the beginning of an item when no part of the item is visible.
    function revealBeginning(item: Item) {
        const top = item.mapToItem(root.contentItem, 0, 0).y;
        if (top + item.height < root.contentY || top > root.contentY + root.height - QXTheme.touchTarget)
            root.scrollBy(top - QXTheme.touchTarget - root.contentY);
    }
}
