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
    ground: QXTheme.sheetPage
    contentHeight: findPlace.height + column.height
    scrollArea: scroll

    Keys.onShortcutOverride: event => event.accepted = findPlace.commandOf(event) !== 0
    Keys.onPressed: event => {
        if (findPlace.perform(findPlace.commandOf(event)))
            event.accepted = true;
    }

    onPayloadChanged: {
        sections.payload = root.payload;
        if (root.payload !== undefined && root.presented)
            root.appear(); // the sheet may be leaving with an earlier payload
    }
    onVisibleChanged: {
        if (!visible && !presented) {
            findPlace.end();
            sections.clear();
        }
    }
    Component.onCompleted: sections.payload = root.payload

    QXDecodedPayloadModel {
        id: sections

        onPayloadChanged: scroll.contentY = 0
    }

    QXFindPlace {
        id: findPlace

        x: QXTheme.margin
        width: parent.width - 2 * x
        bottomPadding: isFinding ? 12 : 0
        finder: QXTextFinder {}
        content: scroll
    }

    QXSeparator {
        y: findPlace.height
        width: parent.width
        z: 1
    }

    QXScrollArea {
        id: scroll

        objectName: "QXDecodedPayloadPage"
        anchors.fill: parent
        anchors.topMargin: findPlace.height
        contentHeight: column.height

        // In the find field, it closes the field too.
        Keys.onEscapePressed: event => event.accepted = findPlace.end()

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
                        Component.onCompleted: (findPlace.finder as QXTextFinder).add(block.view)
                        color: QXTheme.faintFill
                        view.font: Qt.font({
                            family: QXTheme.appearance.monospacedFamily,
                            pixelSize: Math.round(12 * QXTheme.scale)
                        })
                        onCopyRequested: {
                            block.selectAll();
                            block.copySelection();
                        }
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

    QXScrollHint {
        area: scroll
        ground: root.ground
        radius: root.isCard ? QXTheme.cardRadius : 0
    }

    QXTextMenu {
        id: menu

        presentationLayer: root.presentationLayer
        canFind: true
        onFindRequested: findPlace.perform(QXFinder.Find)
        onCopyRequested: {
            menu.block?.selectAll();
            menu.block?.copySelection();
        }
        onCopySelectionRequested: menu.block?.copySelection()

        function openFor(block: QXTextBlock, position: point) {
            menu.block = block;
            menu.open(block, position.x, position.y);
        }
    }
}
