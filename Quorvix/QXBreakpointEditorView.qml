import QtQuick
import Quorvix

/// The editor of a held response: its status code and its body, released unchanged or with the edits.
FocusScope {
    id: root

    required property QXBreakpointEditorModel model
    property real safeAreaTop: 0
    property real safeAreaLeft: 0
    property real safeAreaRight: 0
    property real safeAreaBottom: 0

    objectName: "QXBreakpointEditorView"

    LayoutMirroring.enabled: QXTheme.isMirrored
    LayoutMirroring.childrenInherit: true

    QXShield {
        anchors.fill: parent
    }

    Rectangle {
        anchors.fill: parent
        color: QXTheme.background
    }

    QXNavigationBar {
        id: bar

        x: root.safeAreaLeft
        y: root.safeAreaTop
        width: parent.width - root.safeAreaLeft - root.safeAreaRight
        title: qsTranslate("Quorvix", "Breakpoint")
        enabled: !presentations.isPresenting

        leading: QXTextButton {
            id: continueButton

            objectName: "QXContinueButton"
            text: qsTranslate("Quorvix", "Continue")
            font: QXTheme.barItem
            onClicked: root.model.continueResponse()
        }
        trailing: QXTextButton {
            objectName: "QXApplyButton"
            text: qsTranslate("Quorvix", "Apply Changes")
            font: QXTheme.barTitle
            onClicked: root.model.applyChanges()
        }
    }

    Item {
        anchors.top: bar.bottom
        anchors.topMargin: QXTheme.margin
        anchors.bottom: parent.bottom
        anchors.bottomMargin: QXTheme.margin + Math.max(root.safeAreaBottom, keyboardHeight)
        x: bar.x + bar.columnMargin
        width: bar.width - 2 * bar.columnMargin
        enabled: !presentations.isPresenting

        readonly property real keyboardHeight: InputMethod.visible ? InputMethod.keyboardRectangle.height : 0

        Column {
            id: head

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
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                text: qsTranslate("Quorvix", "RESPONSE BODY")
                font: QXTheme.caption
                color: QXTheme.secondaryLabel
                Accessible.ignored: true
            }

            Row {
                anchors.right: parent.right
                anchors.rightMargin: -QXTheme.spacing

                QXTextButton {
                    objectName: "QXCopyBodyButton"
                    text: qsTranslate("Quorvix", "Copy")
                    font: QXTheme.caption
                    onClicked: root.model.copyBody()
                }

                QXTextButton {
                    id: deleteButton

                    objectName: "QXDeleteBodyButton"
                    text: qsTranslate("Quorvix", "Delete")
                    font: QXTheme.caption
                    onClicked: root.model.deleteBody()
                }
            }
        }

        QXTextArea {
            id: body

            objectName: "QXBodyArea"
            anchors.top: caption.bottom
            anchors.bottom: parent.bottom
            width: parent.width
            document: root.model.document
            KeyNavigation.tab: continueButton
            KeyNavigation.backtab: deleteButton
            Accessible.name: qsTranslate("Quorvix", "RESPONSE BODY")
            onContextMenuRequested: position => menu.open(body, position.x, position.y)
        }
    }

    QXPresentationLayer {
        id: presentations

        anchors.fill: parent
    }

    QXEditMenu {
        id: menu

        presentationLayer: presentations
        area: body
    }
}
