import QtQuick
import QtQuick.Templates as T
import Quorvix

/// A column that scrolls below a navigation bar, starting with its large title in full.
Flickable {
    id: root

    required property QXNavigationBar bar
    property real bottomInset: 0
    default property alias items: column.data

    y: bar.collapsedHeight
    width: bar.width
    topMargin: bar.largeTitleHeight
    bottomMargin: bottomInset + QXTheme.buttonClearance
    contentHeight: column.implicitHeight
    focus: true
    activeFocusOnTab: true
    clip: true
    boundsBehavior: Flickable.DragOverBounds

    Accessible.role: Accessible.Pane
    Accessible.name: bar.title

    T.ScrollBar.vertical: QXScrollBar {}

    Keys.onUpPressed: root.scrollBy(-QXTheme.touchTarget)
    Keys.onDownPressed: root.scrollBy(QXTheme.touchTarget)
    Keys.onPressed: event => {
        event.accepted = true;
        if (event.key === Qt.Key_PageUp)
            root.scrollBy(-root.height + QXTheme.touchTarget);
        else if (event.key === Qt.Key_PageDown || event.key === Qt.Key_Space)
            root.scrollBy(root.height - QXTheme.touchTarget);
        else if (event.key === Qt.Key_Home)
            root.scrollBy(-Infinity);
        else if (event.key === Qt.Key_End)
            root.scrollBy(Infinity);
        else
            event.accepted = false;
    }

    Column {
        id: column

        width: root.width
    }

    Component.onCompleted: root.scrollBy(-Infinity)
    onTopMarginChanged: root.scrollBy(-Infinity)

    function scrollBy(distance: real) {
        const highest = -root.topMargin;
        const lowest = Math.max(highest, root.contentHeight + root.bottomMargin - root.height);
        root.contentY = Math.max(highest, Math.min(root.contentY + distance, lowest));
    }

    /// Brings a control into view that the keyboard has come to.
    function revealFocused(control: T.Control) {
        if (!control.visualFocus)
            return;
        const top = control.mapToItem(column, 0, 0).y - QXTheme.touchTarget;
        const bottom = top + Math.min(control.height + QXTheme.touchTarget + QXTheme.buttonClearance, root.height);
        if (top < root.contentY)
            root.scrollBy(top - root.contentY);
        else if (bottom > root.contentY + root.height)
            root.scrollBy(bottom - root.contentY - root.height);
    }

    /// Brings the beginning of an item into view when nothing of it is.
    function revealBeginning(item: Item) {
        const top = item.mapToItem(column, 0, 0).y;
        if (top + item.height < root.contentY || top > root.contentY + root.height - QXTheme.touchTarget)
            root.scrollBy(top - QXTheme.touchTarget - root.contentY);
    }
}
