pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix.Text
import Quorvix.Screens

/// The decoded payload screen: the content of an encoded text, with one block for each section.
QXSheet {
    id: root

    /// A QXDecodedPayload, or undefined to close the screen.
    property var payload: undefined

    objectName: "QXDecodedPayloadSheet"
    doneName: "QXDecodedPayloadDone"
    doneText: qsTranslate("Quorvix", "OK")
    presented: payload !== undefined
    title: sections.title
    contentHeight: column.height
    scrollArea: scroll

    onPayloadChanged: sections.payload = root.payload
    onVisibleChanged: {
        if (!visible && !presented)
            sections.clear();
    }
    Component.onCompleted: sections.payload = root.payload

    QXDecodedPayloadModel {
        id: sections

        onPayloadChanged: scroll.contentY = 0
    }

    Rectangle {
        anchors.fill: parent
        anchors.bottomMargin: -root.presentationLayer.safeArea.bottom
        color: QXTheme.background

        QXSeparator {
            width: parent.width
        }
    }

    QXScrollArea {
        id: scroll

        objectName: "QXDecodedPayloadPage"
        anchors.fill: parent
        contentHeight: column.height

        Column {
            id: column

            width: scroll.width
            padding: QXTheme.margin
            spacing: QXTheme.margin

            Repeater {
                model: sections

                delegate: Column {
                    id: section

                    required property string title
                    required property QXTextDocument document

                    width: column.width - 2 * column.padding
                    spacing: 6

                    QXText {
                        objectName: "QXDecodedSectionTitle"
                        width: parent.width
                        text: section.title
                        font: QXTheme.caption
                        color: QXTheme.secondaryLabel
                        wrapMode: Text.Wrap
                        Accessible.role: Accessible.Heading
                        Accessible.name: text
                    }

                    QXTextBlock {
                        id: block

                        objectName: "QXDecodedSectionText"
                        width: parent.width
                        page: scroll
                        document: section.document
                        color: QXTheme.faintFill
                        view.font: Qt.font({
                            family: QXTheme.appearance.monospacedFamily,
                            pixelSize: Math.round(12 * QXTheme.scale)
                        })
                        onContextMenuRequested: position => menu.openFor(block, position)
                        onActiveFocusChanged: {
                            if (activeFocus)
                                scroll.revealBeginning(block);
                        }
                    }
                }
            }
        }
    }

    QXTextMenu {
        id: menu

        presentationLayer: root.presentationLayer
        onCopyRequested: {
            menu.block.selectAll();
            menu.block.copySelection();
        }
        onCopySelectionRequested: menu.block.copySelection()

        function openFor(block: QXTextBlock, position: point) {
            menu.block = block;
            menu.open(block, position.x, position.y);
        }
    }
}
