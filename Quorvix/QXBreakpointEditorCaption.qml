import QtQuick
import Quorvix.Controls

/// The caption above the body of a held response, with buttons that copy or delete the whole body.
Item {
    id: root

    signal copyRequested
    signal deleteRequested

    implicitHeight: QXTheme.touchTarget

    QXText {
        objectName: "QXBodyCaption"
        anchors.left: parent.left
        anchors.right: actions.left
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
        id: actions

        anchors.right: parent.right
        anchors.rightMargin: -QXTheme.spacing
        anchors.verticalCenter: parent.verticalCenter

        QXTextButton {
            objectName: "QXCopyBodyButton"
            text: qsTranslate("Quorvix", "Copy")
            font: QXTheme.caption
            onClicked: root.copyRequested()
        }

        QXTextButton {
            objectName: "QXDeleteBodyButton"
            text: qsTranslate("Quorvix", "Delete")
            font: QXTheme.caption
            onClicked: root.deleteRequested()
        }
    }
}
