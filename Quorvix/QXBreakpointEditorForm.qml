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

        Column {
            id: head

            y: QXTheme.margin
            width: parent.width
            spacing: 4

            QXText {
                objectName: "QXBreakpointTitle"
                width: parent.width
                text: root.model.displayTitle
                font: QXTheme.subheadline
                wrapMode: Text.WrapAnywhere
                maximumLineCount: 3
                elide: Text.ElideRight
            }

            QXText {
                width: parent.width
                text: qsTranslate("Quorvix", "Edit response and continue.")
                font: QXTheme.footnote
                color: QXTheme.secondaryLabel
                wrapMode: Text.Wrap
            }

            QXText {
                width: parent.width
                topPadding: 12
                text: qsTranslate("Quorvix", "Status Code")
                font: QXTheme.caption
                color: QXTheme.secondaryLabel
                Accessible.ignored: true
            }

            QXTextField {
                objectName: "QXStatusCodeField"
                width: parent.width
                focus: true
                text: root.model.statusCodeText
                inputMethodHints: Qt.ImhDigitsOnly | Qt.ImhNoAutoUppercase | Qt.ImhNoPredictiveText
                Accessible.name: qsTranslate("Quorvix", "Status Code")
                onTextChanged: root.model.statusCodeText = text
            }
        }

        Item {
            id: caption

            anchors.top: head.bottom
            anchors.topMargin: QXTheme.spacing
            width: parent.width
            height: QXTheme.touchTarget

            QXText {
                objectName: "QXBodyCaption"
                anchors.left: parent.left
                anchors.right: bodyActions.left
                anchors.verticalCenter: parent.verticalCenter
                text: qsTranslate("Quorvix", "RESPONSE BODY")
                font: QXTheme.caption
                color: QXTheme.secondaryLabel
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: QXTheme.caption.pixelSize / 2
                elide: Text.ElideRight
                Accessible.ignored: true
            }

            Row {
                id: bodyActions

                anchors.right: parent.right
                anchors.rightMargin: -QXTheme.spacing
                anchors.verticalCenter: parent.verticalCenter

                QXTextButton {
                    objectName: "QXCopyBodyButton"
                    text: qsTranslate("Quorvix", "Copy")
                    font: QXTheme.caption
                    onClicked: root.model.copyBody()
                }

                QXTextButton {
                    objectName: "QXDeleteBodyButton"
                    text: qsTranslate("Quorvix", "Delete")
                    font: QXTheme.caption
                    onClicked: body.editor.clear()
                }
            }
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
