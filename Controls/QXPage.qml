import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A column that scrolls below a navigation bar, starting with its large title in full.
QXScrollArea {
    id: root

    required property QXNavigationBar bar
    required property QXSafeArea safeArea
    /// Whether the large title is in full view.
    property bool isAtTop: true
    property real formerY: 0
    default property alias items: column.data

    y: bar.collapsedHeight
    width: bar.width
    topMargin: bar.largeTitleHeight
    bottomMargin: floats.bottomMargin
    contentHeight: column.implicitHeight
    focus: true
    activeFocusOnTab: true
    interactive: true
    boundsBehavior: Flickable.DragOverBounds

    Accessible.role: Accessible.Pane
    Accessible.name: bar.shownTitle

    QXPageFloat {
        id: floats

        page: root
        safeArea: root.safeArea
    }

    Column {
        id: column

        width: root.width
    }

    QXFocusReason {
        id: focusReason

        item: root
    }

    // Beside the content, which moves.
    QXFocusRing {
        parent: root
        anchors.fill: parent
        anchors.margins: 2
        visible: focusReason.isVisual
    }

    QXTopAnchor {
        view: root
        column: column
        isScrolled: !root.isAtTop
    }

    onKeyScrolled: root.safeArea.scrolled()
    Component.onCompleted: root.scrollBy(-Infinity)
    onContentYChanged: root.isAtTop = root.contentY <= -root.topMargin
    // When the bar grows or shrinks, the text that the user reads stays where it is.
    onYChanged: {
        if (!root.isAtTop)
            root.scrollBy(root.y - root.formerY);
        root.formerY = root.y;
    }
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
