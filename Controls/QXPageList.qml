import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A list that scrolls below a navigation bar, starting with its large title in full.
ListView {
    id: root

    required property QXNavigationBar bar
    property real bottomInset: 0
    /// Whether the large title is in full view.
    property bool isAtTop: true
    /// Whether the current row is highlighted. A key press sets it; a tap clears it, because a tapped row is
    /// highlighted only while it is pressed.
    property bool highlightsCurrentRow: false

    y: bar.collapsedHeight
    width: bar.width
    topMargin: bar.largeTitleHeight
    bottomMargin: bottomInset + QXTheme.buttonClearance
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

    Keys.onPressed: root.highlightsCurrentRow = true

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

    function scrollToTop() {
        root.contentY = root.originY - root.topMargin;
    }
}
