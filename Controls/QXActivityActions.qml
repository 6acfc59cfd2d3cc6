import QtQuick
import Quorvix.Controls

/// The actions of the share sheet.
Rectangle {
    id: root

    required property UIActivityViewController controller
    /// Scrolls to an action when it gets the keyboard focus.
    required property QXScrollArea scrollArea
    property bool isSaving: false
    property bool couldNotOpen: false

    implicitHeight: column.implicitHeight
    radius: QXTheme.cornerRadius
    color: QXTheme.elevatedBackground

    // An on-screen keyboard that opens for the field makes the area lower.
    Connections {
        target: root.scrollArea

        function onHeightChanged() {
            if (saveField.isEdited)
                root.scrollArea.reveal(saveField);
        }
    }

    Timer {
        id: copied

        interval: 2000
    }

    Column {
        id: column

        width: parent.width

        QXActivityAction {
            objectName: "QXActivityCopy"
            scrollArea: root.scrollArea
            symbol: copied.running ? "checkmark" : "doc.on.doc"
            text: copied.running ? qsTranslate("Quorvix", "Copied") : qsTranslate("Quorvix", "Copy")
            onClicked: root.copy()
        }

        QXActivityAction {
            objectName: "QXActivitySaveAs"
            scrollArea: root.scrollArea
            symbol: "square.and.arrow.down"
            text: qsTranslate("Quorvix", "Save As")
            isLast: !root.controller.isFile || root.isSaving
            onClicked: {
                root.isSaving = !root.isSaving;
                if (root.isSaving)
                    saveField.begin();
                root.scrollArea.reveal(saveField);
            }
        }

        QXSaveField {
            id: saveField

            width: parent.width
            visible: root.isSaving
            controller: root.controller
        }

        QXActivityAction {
            objectName: "QXActivityOpen"
            scrollArea: root.scrollArea
            visible: root.controller.isFile
            symbol: "arrow.up.forward.app"
            text: qsTranslate("Quorvix", "Open")
            onClicked: root.couldNotOpen = !root.controller.open()
        }

        QXActivityAction {
            objectName: "QXActivityShowInFolder"
            scrollArea: root.scrollArea
            visible: root.controller.isFile
            symbol: "folder"
            text: qsTranslate("Quorvix", "Show in Folder")
            isLast: true
            onClicked: root.couldNotOpen = !root.controller.showInFolder()
        }
    }

    function copy() {
        root.controller.copy();
        copied.restart();
    }

    /// Opens the field for a path, or saves to the path that it shows.
    function saveAs() {
        if (root.isSaving) {
            saveField.save();
            return;
        }
        root.isSaving = true;
        saveField.begin();
        root.scrollArea.reveal(saveField);
    }

    /// Resets the state before another item is shared.
    function begin() {
        root.isSaving = false;
        root.couldNotOpen = false;
        copied.stop();
    }
}
