import QtQuick
import Quorvix.Controls
import Quorvix.Screens

/// Shows the title of the held response and a field for its status code.
Column {
    id: root

    required property QXBreakpointEditorModel model

    spacing: 4

    QXLabel {
        objectName: "QXBreakpointTitle"
        width: parent.width
        content: root.model.displayTitle
        font: QXTheme.subheadline
        wrapMode: Text.Wrap
        maximumLineCount: QXTheme.isLargeText ? 5 : 3
        elide: Text.ElideRight
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    QXText {
        width: parent.width
        text: qsTranslate("Quorvix", "Edit response and continue.")
        font: QXTheme.footnote
        color: QXTheme.secondaryLabel
        wrapMode: Text.Wrap
        Accessible.role: Accessible.StaticText
        Accessible.name: text
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
