import QtQuick
import Quorvix.Controls

/// A message that the user has to confirm.
QXModal {
    id: root

    property string title
    property string message

    objectName: "QXAlert"
    dismissesOnOutsideTap: false

    Keys.onReturnPressed: root.dismissRequested()
    Keys.onEnterPressed: root.dismissRequested()
    Keys.onPressed: event => event.accepted = texts.scrollByKey(event.key)

    Accessible.role: Accessible.AlertMessage
    Accessible.name: heading.text
    Accessible.description: explanation.text

    QXCard {
        anchors.centerIn: parent
        width: Math.min(270 * Math.max(1, QXTheme.scale), root.width - 2 * QXTheme.margin)
        height: Math.min(column.implicitHeight + button.height, root.height - 2 * QXTheme.margin)
        scale: root.presented ? 1 + 0.1 * (1 - root.progress) : 1
        opacity: root.progress

        MouseArea {
            anchors.fill: parent
        }

        QXScrollArea {
            id: texts

            width: parent.width
            height: parent.height - button.height
            contentHeight: column.implicitHeight

            Column {
                id: column

                width: texts.width
                topPadding: 20
                bottomPadding: 20

                QXLabel {
                    id: heading

                    x: QXTheme.margin
                    width: parent.width - 2 * x
                    content: root.title
                    font: QXTheme.headline
                    wrapMode: Text.Wrap
                    horizontalAlignment: Text.AlignHCenter
                    Accessible.ignored: true
                }

                QXText {
                    id: explanation

                    x: QXTheme.margin
                    width: parent.width - 2 * x
                    topPadding: 3
                    visible: text.length > 0
                    text: QXShortText.beginning(root.message, 1000)
                    font: QXTheme.footnote
                    wrapMode: Text.Wrap
                    horizontalAlignment: Text.AlignHCenter
                    Accessible.ignored: true
                }
            }
        }

        QXTextButton {
            id: button

            objectName: "QXAlertButton"
            anchors.bottom: parent.bottom
            width: parent.width
            focus: true
            text: qsTranslate("Quorvix", "OK")
            font: QXTheme.headline
            onClicked: root.dismissRequested()

            QXSeparator {
                width: parent.width
            }
        }
    }
}
