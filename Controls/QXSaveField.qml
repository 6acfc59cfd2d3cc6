import QtQuick
import Quorvix.Controls

/// A field for the path to save to, a save button, and the result.
Column {
    id: root

    required property UIActivityViewController controller
    property string outcome
    property bool failed: false
    readonly property alias isEdited: path.activeFocus

    spacing: QXTheme.spacing
    leftPadding: QXTheme.margin
    rightPadding: QXTheme.margin
    bottomPadding: 12

    function begin() {
        root.outcome = "";
        path.text = root.controller.suggestedPath;
        path.forceActiveFocus();
    }

    function save() {
        root.outcome = "";
        root.controller.saveAs(path.text);
    }

    Connections {
        target: root.controller

        function onSaved(failure: string) {
            root.failed = failure.length > 0;
            root.outcome = root.failed ? failure : qsTranslate("Quorvix", "Saved.");
        }
    }

    Row {
        width: parent.width - 2 * QXTheme.margin
        spacing: QXTheme.spacing

        QXTextField {
            id: path

            objectName: "QXActivityPath"
            width: parent.width - saveButton.width - parent.spacing
            font: QXTheme.subheadline
            inputMethodHints: Qt.ImhNoAutoUppercase | Qt.ImhNoPredictiveText
            Accessible.name: qsTranslate("Quorvix", "Path")
            onAccepted: root.save()
        }

        QXTextButton {
            id: saveButton

            objectName: "QXActivitySave"
            text: qsTranslate("Quorvix", "Save")
            font: QXTheme.headline
            enabled: path.text.length > 0
            onClicked: root.save()
        }
    }

    QXText {
        objectName: "QXActivityOutcome"
        width: parent.width - 2 * QXTheme.margin
        visible: text.length > 0
        text: root.outcome
        font: QXTheme.footnote
        color: root.failed ? QXTheme.redText : QXTheme.secondaryLabel
        wrapMode: Text.Wrap
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
}
