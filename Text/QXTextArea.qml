import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls
import Quorvix.Text

/// Many lines to type in, with a rounded border; a text of any size. The type is the system's monospaced one,
/// of regular weight.
FocusScope {
    id: root

    property alias document: editor.document
    property alias text: editor.text
    property alias hasSelection: editor.hasSelection
    readonly property alias editor: editor
    property real padding: 12

    /// By a right click, the Menu key, or a finger that is held, in the area's coordinates.
    signal contextMenuRequested(point position)
    signal textEdited
    /// The text has been scrolled so that these heights of the area are to be seen.
    signal revealed(real top, real bottom)

    /// That of a few rows, with less of which one cannot work.
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

    // Stays where it is and paints another part instead of being moved by the page: see QXTextBlock.
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

        // Not beside it: they are anchored before the parent above is set.
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
