import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Quorvix.Controls
import Quorvix.Text
import Quorvix

/// What can be edited of a held response. The body takes the room that is left, and in a low window the whole of
/// it scrolls, with what has the keyboard in sight.
Flickable {
    id: root

    required property QXBreakpointEditorModel model
    readonly property alias body: body

    /// For the body, in its coordinates.
    signal contextMenuRequested(point position)

    objectName: "QXBreakpointEditorForm"
    contentHeight: content.height
    interactive: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    flickableDirection: Flickable.VerticalFlick
    clip: true

    T.ScrollBar.vertical: QXScrollBar {}

    onHeightChanged: root.showFocus()
    // The body shows its cursor itself: a press in it must not scroll before the cursor is there.
    Window.onActiveFocusItemChanged: {
        if (!body.activeFocus)
            root.showFocus();
    }

    FocusScope {
        id: content

        readonly property real smallestHeight: body.y + body.implicitHeight + QXTheme.margin

        x: QXTheme.columnMargin(root.width)
        width: root.width - 2 * QXTheme.columnMargin(root.width)
        height: Math.max(root.height, smallestHeight)
        focus: true
        onHeightChanged: root.showFocus()

        QXBreakpointEditorHead {
            id: head

            y: QXTheme.margin
            width: parent.width
            model: root.model
        }

        QXBreakpointEditorCaption {
            id: caption

            anchors.top: head.bottom
            anchors.topMargin: QXTheme.spacing
            width: parent.width
            onCopyRequested: root.model.copyBody()
            onDeleteRequested: body.editor.clear()
        }

        QXTextArea {
            id: body

            objectName: "QXBodyArea"
            anchors.top: caption.bottom
            anchors.bottom: parent.bottom
            anchors.bottomMargin: QXTheme.margin
            width: parent.width
            document: root.model.document
            Accessible.name: qsTranslate("Quorvix", "RESPONSE BODY")
            onContextMenuRequested: position => root.contextMenuRequested(position)
            onRevealed: (top, bottom) => {
                // All of it where there is room, but the cursor in any case.
                root.reveal(body.y, body.y + body.height);
                root.reveal(body.y + top, body.y + bottom);
            }
        }
    }

    /// Scrolls what has the keyboard into sight.
    function showFocus() {
        const item = root.Window.activeFocusItem;
        if (body.activeFocus) {
            body.editor.showCursor();
        } else if (content.activeFocus) {
            const top = content.mapFromItem(item, 0, 0).y;
            root.reveal(top, top + item.height);
        }
    }

    function reveal(top: real, bottom: real) {
        const lowest = Math.max(root.contentY, bottom + QXTheme.spacing - root.height);
        root.contentY = Math.max(0, Math.min(lowest, top - QXTheme.spacing));
    }
}
