import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A column that scrolls below a navigation bar, starting with its large title in full.
QXScrollArea {
    id: root

    required property QXNavigationBar bar
    property real bottomInset: 0
    /// Whether the large title is in full view.
    property bool isAtTop: true
    default property alias items: column.data

    y: bar.collapsedHeight
    width: bar.width
    topMargin: bar.largeTitleHeight
    bottomMargin: bottomInset + QXTheme.buttonClearance
    contentHeight: column.implicitHeight
    focus: true
    activeFocusOnTab: true
    interactive: true
    boundsBehavior: Flickable.DragOverBounds

    Accessible.role: Accessible.Pane
    Accessible.name: bar.shownTitle

    Column {
        id: column

        width: root.width
    }

    Component.onCompleted: root.scrollBy(-Infinity)
    onContentYChanged: root.isAtTop = root.contentY <= -root.topMargin
    // When the height of the title changes, a page that is scrolled down keeps its position.
    onTopMarginChanged: {
        if (root.isAtTop)
            root.scrollBy(-Infinity);
    }

    /// Scrolls to a control that has the keyboard focus.
    function revealFocused(control: T.Control) {
        if (control.visualFocus)
            root.reveal(control);
    }
}
