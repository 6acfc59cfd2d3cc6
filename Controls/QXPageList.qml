import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A list that scrolls below a navigation bar, starting with its large title in full.
ListView {
    id: root

    required property QXNavigationBar bar
    required property QXSafeArea safeArea
    /// Whether the large title is in full view.
    property bool isAtTop: true
    /// Whether the current row is highlighted. A key press sets it; a tap clears it, because a tapped row is
    /// highlighted only while it is pressed.
    property bool highlightsCurrentRow: false

    readonly property int pageRows: Math.max(1, Math.floor(height / (currentItem?.height ?? QXTheme.touchTarget)) - 1)

    y: bar.collapsedHeight
    width: bar.width
    topMargin: bar.largeTitleHeight
    bottomMargin: floats.bottomMargin
    focus: true
    activeFocusOnTab: true
    reuseItems: true
    // Rows of a buffer are created later, and Qt prints a warning when the model or the list is gone by then.
    cacheBuffer: 0
    clip: true
    currentIndex: -1
    highlightMoveDuration: 0
    boundsBehavior: Flickable.DragOverBounds

    Accessible.role: Accessible.List
    Accessible.name: bar.shownTitle

    T.ScrollBar.vertical: QXScrollBar {}

    Keys.onPressed: event => {
        root.highlightsCurrentRow = true;
        floats.watchKey();
        if (root.walk(event.key))
            event.accepted = true;
    }

    QXPageFloat {
        id: floats

        parent: root
        page: root
        safeArea: root.safeArea
    }

    // The Tab key leads to a row, because the list itself shows no focus.
    QXFocusReason {
        item: root
        onIsVisualChanged: {
            if (!isVisual)
                return;
            root.highlightsCurrentRow = true;
            if (root.currentIndex < 0 && root.count > 0)
                root.currentIndex = Math.max(0, root.indexAt(root.width / 2, Math.max(root.contentY, root.originY) + 1));
        }
    }

    Component.onCompleted: root.scrollToTop()
    onMovementStarted: {
        if (InputMethod.visible)
            InputMethod.hide();
    }
    onContentYChanged: root.isAtTop = root.contentY <= root.originY - root.topMargin
    // When the height of the title changes, a list that is scrolled down keeps its position.
    onTopMarginChanged: {
        if (root.isAtTop)
            root.scrollToTop();
    }

    /// Moves the current row and keyboard focus to the row that the user clicked or tapped.
    function selectRow(row: int) {
        root.highlightsCurrentRow = false;
        root.currentIndex = row;
        root.forceActiveFocus();
    }

    function setCurrentRow(row: int) {
        root.currentIndex = Math.max(0, Math.min(row, root.count - 1));
        root.positionViewAtIndex(root.currentIndex, ListView.Contain); // Qt 6.8 stays at the top
    }

    /// Goes by a page or to an end, for a key. Returns whether the key is one of these.
    function walk(key: int): bool {
        switch (key) {
        case Qt.Key_Home:
            root.setCurrentRow(0);
            return true;
        case Qt.Key_End:
            root.setCurrentRow(root.count - 1);
            return true;
        case Qt.Key_PageUp:
            root.setCurrentRow(root.currentIndex - root.pageRows);
            return true;
        case Qt.Key_PageDown:
            root.setCurrentRow(root.currentIndex + root.pageRows);
            return true;
        default:
            return false;
        }
    }

    function scrollToTop() {
        (root.T.ScrollBar.vertical as QXScrollBar)?.stop();
        root.contentY = root.originY - root.topMargin;
    }
}
