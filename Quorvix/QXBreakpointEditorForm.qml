import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Quorvix.Controls
import Quorvix.Text
import Quorvix.Screens

/// The editable parts of a held response. The body fills the remaining height. If the window is too low, the
/// whole form scrolls and keeps the item with keyboard focus visible.
Flickable {
    id: root

    required property QXBreakpointEditorModel model
    readonly property alias body: body

    /// Requests the context menu of the body; @p position is in the body's coordinates.
    signal contextMenuRequested(point position)

    objectName: "QXBreakpointEditorForm"
    contentHeight: content.height
    interactive: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    flickableDirection: Flickable.VerticalFlick
    clip: true

    T.ScrollBar.vertical: QXScrollBar {}

    onMovementStarted: {
        if (InputMethod.visible)
            InputMethod.hide();
    }
    onHeightChanged: root.showFocus()
    // The body scrolls to its cursor itself. A press in the body must not scroll the form before the cursor
    // has moved there.
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
            enabled: root.model.isLoaded
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
            enabled: root.model.isLoaded
            Accessible.name: qsTranslate("Quorvix", "RESPONSE BODY")
            onContextMenuRequested: position => root.contextMenuRequested(position)
            onRevealed: (top, bottom) => {
                // Shows the whole body if there is room for it, but the cursor in any case.
                root.reveal(body.y, body.y + body.height);
                root.reveal(body.y + top, body.y + bottom);
            }
        }
    }

    /// Scrolls until the item with keyboard focus is visible.
    function showFocus() {
        const item = root.Window.activeFocusItem;
        if (body.activeFocus) {
            body.editor.showCursor();
        } else if (content.activeFocus && item) { // there is no item while the window is being deleted
            const top = content.mapFromItem(item, 0, 0).y;
            root.reveal(top, top + item.height);
        }
    }

    function reveal(top: real, bottom: real) {
        const lowest = Math.max(root.contentY, bottom + QXTheme.spacing - root.height);
        root.contentY = Math.max(0, Math.min(lowest, top - QXTheme.spacing));
    }
}
