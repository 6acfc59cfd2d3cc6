import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls
import Quorvix.Text

/// A text field of several lines with a rounded border, for a text of any size. The font is the system's
/// monospaced one, of regular weight.
FocusScope {
    id: root

    property alias document: editor.document
    property alias text: editor.text
    property alias hasSelection: editor.hasSelection
    readonly property alias editor: editor
    property real padding: 12

    /// Emitted for a right click, the Menu key, or a long press. The position is in the area's coordinates.
    signal contextMenuRequested(point position)
    signal textEdited
    /// Emitted after the text was scrolled to the cursor. The page should show these heights of the area.
    signal revealed(real top, real bottom)

    /// The height of four rows; a smaller area is hard to use.
    implicitHeight: 4 * editor.rowHeight + 2 * (root.padding + page.anchors.margins)
    activeFocusOnTab: false

    Accessible.ignored: true

    Rectangle {
        anchors.fill: parent
        radius: QXTheme.cornerRadius
        color: "transparent"
        border.width: editor.activeFocus ? 2 : 1
        border.color: editor.activeFocus ? QXTheme.blue : QXTheme.separator
    }

    Flickable {
        id: page

        anchors.fill: parent
        anchors.margins: 2
        contentHeight: editor.contentHeight + 2 * root.padding
        boundsBehavior: Flickable.StopAtBounds
        flickableDirection: Flickable.VerticalFlick
        clip: true

        T.ScrollBar.vertical: QXScrollBar {}
    }

    // The editor does not move with the page, but paints another part of the text; see QXTextBlock.
    QXTextEditor {
        id: editor

        objectName: "QXTextEditor"
        parent: page
        x: root.padding
        width: Math.max(0, page.width - 2 * root.padding)
        height: page.height
        scrollOffset: Math.round(page.contentY) - root.padding
        focus: true
        font: QXTheme.monospaced
        color: QXTheme.label
        selectionColor: QXTheme.selection
        selectedTextColor: QXTheme.onColor
        Accessible.role: Accessible.EditableText
        Accessible.name: root.Accessible.name
        Accessible.description: editor.document ? editor.document.beginning : ""
        Accessible.focusable: true
        Accessible.multiLine: true
        Accessible.readOnly: editor.isReadOnly

        onTextEdited: root.textEdited()
        onContextMenuRequested: position => root.contextMenuRequested(editor.mapToItem(root, position))
        onRevealRequested: (top, bottom) => root.reveal(top, bottom)
        onTopRowMoved: distance => page.contentY += distance

        // The handles have to be children of the editor: their anchors are set before the parent above.
        QXTextHandles {
            view: editor
        }
    }

    function reveal(top: real, bottom: real) {
        const lowest = Math.max(page.contentY, bottom + 2 * root.padding - page.height);
        page.contentY = Math.max(0, Math.min(lowest, top));
        const offset = editor.mapToItem(root, 0, 0).y - editor.scrollOffset;
        root.revealed(top + offset, bottom + offset);
    }
}
