import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// What a page does for an item that floats over it: the last row can be scrolled clear of the item, and the item
/// learns when the user scrolls.
Item {
    id: root

    required property Flickable page
    required property QXSafeArea safeArea

    readonly property real smallest: safeArea.bottom + QXTheme.margin
    /// The distance from the bottom of the page to the end of its content at the lowest position.
    readonly property real end: Math.max(smallest, page.height - page.topMargin - page.contentHeight)
    /// Enough for the row at the end, or for some lines of a long text.
    readonly property real rowHeight: 2 * QXTheme.touchTarget * Math.max(1, QXTheme.scale)
    readonly property bool isBeside: end < safeArea.floatTop && end + rowHeight > safeArea.floatBottom
    /// The margin below the end of the content.
    readonly property real bottomMargin: isBeside ? Math.max(smallest, safeArea.floatTop + QXTheme.spacing) : smallest

    visible: false

    Connections {
        target: root.page

        function onContentYChanged() {
            if (root.page.moving || ((root.page.T.ScrollBar.vertical as QXScrollBar)?.isScrolling ?? false))
                root.safeArea.scrolled();
        }
    }

    // The page handles the key later.
    Timer {
        id: later

        property real before: 0

        interval: 0
        onTriggered: {
            if (root.page.contentY !== before)
                root.safeArea.scrolled();
        }
    }

    /// Called before the page handles a key, which may scroll it.
    function watchKey() {
        later.before = root.page.contentY;
        later.start();
    }
}
