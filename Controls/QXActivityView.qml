import QtQuick
import Quorvix.Controls

/// The share sheet: what is shared, and what can be done with it. One presentation for each share item.
QXSheet {
    id: root

    /// A QXShareItem, or undefined while there is nothing to share.
    required property var shareItem
    property bool isSaving: false
    property bool couldNotOpen: false

    objectName: "QXActivitySheet"
    doneName: "QXActivityDone"
    presented: shareItem !== undefined
    contentHeight: column.implicitHeight
    scrollArea: page
    Accessible.name: activity.title

    onShareItemChanged: root.begin()
    Component.onCompleted: root.begin()

    function begin() {
        if (root.shareItem === undefined)
            return;
        activity.activityItems = root.shareItem.activityItems;
        root.isSaving = false;
        root.couldNotOpen = false;
        copied.stop();
        page.contentY = 0;
    }

    UIActivityViewController {
        id: activity
    }

    Timer {
        id: copied

        interval: 2000
    }

    QXScrollArea {
        id: page

        anchors.fill: parent
        contentHeight: column.implicitHeight

        Column {
            id: column

            x: QXTheme.margin
            width: page.width - 2 * x
            spacing: QXTheme.margin
            bottomPadding: QXTheme.margin

            QXActivityHeader {
                width: parent.width
                symbol: activity.isFile ? "doc.text" : "curlybraces"
                title: activity.title
                subtitle: activity.subtitle
            }

            Rectangle {
                width: parent.width
                height: Math.min(preview.implicitHeight, 8 * previewMetrics.height + 24)
                visible: activity.previewText.length > 0
                radius: QXTheme.cornerRadius
                color: QXTheme.elevatedBackground
                clip: true

                FontMetrics {
                    id: previewMetrics

                    font: preview.font
                }

                QXText {
                    id: preview

                    objectName: "QXActivityPreview"
                    // Code reads from left to right everywhere.
                    LayoutMirroring.enabled: false
                    width: parent.width
                    padding: 12
                    text: activity.previewText
                    font: QXTheme.monospaced
                    wrapMode: Text.WrapAnywhere
                    maximumLineCount: 8
                    elide: Text.ElideRight
                }
            }

            Rectangle {
                width: parent.width
                height: actions.implicitHeight
                radius: QXTheme.cornerRadius
                color: QXTheme.elevatedBackground

                Column {
                    id: actions

                    width: parent.width

                    QXActivityAction {
                        objectName: "QXActivityCopy"
                        scrollArea: page
                        symbol: copied.running ? "checkmark" : "doc.on.doc"
                        text: copied.running ? qsTranslate("Quorvix", "Copied") : qsTranslate("Quorvix", "Copy")
                        onClicked: {
                            activity.copy();
                            copied.restart();
                        }
                    }

                    QXActivityAction {
                        objectName: "QXActivitySaveAs"
                        scrollArea: page
                        symbol: "square.and.arrow.down"
                        text: qsTranslate("Quorvix", "Save As")
                        isLast: !activity.isFile || root.isSaving
                        onClicked: {
                            root.isSaving = !root.isSaving;
                            if (root.isSaving)
                                saveField.begin();
                            page.reveal(saveField);
                        }
                    }

                    QXSaveField {
                        id: saveField

                        width: parent.width
                        visible: root.isSaving
                        controller: activity
                    }

                    QXActivityAction {
                        objectName: "QXActivityOpen"
                        scrollArea: page
                        visible: activity.isFile
                        symbol: "arrow.up.forward.app"
                        text: qsTranslate("Quorvix", "Open")
                        onClicked: root.couldNotOpen = !activity.open()
                    }

                    QXActivityAction {
                        objectName: "QXActivityShowInFolder"
                        scrollArea: page
                        visible: activity.isFile
                        symbol: "folder"
                        text: qsTranslate("Quorvix", "Show in Folder")
                        isLast: true
                        onClicked: root.couldNotOpen = !activity.showInFolder()
                    }
                }
            }

            QXText {
                width: parent.width
                visible: root.couldNotOpen
                text: qsTranslate("Quorvix", "No application could be found to open it.")
                font: QXTheme.footnote
                color: QXTheme.redText
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
        }
    }
}
