import QtQuick
import Quorvix.Controls

/// A dialog with several choices: at the bottom of a narrow window and in the middle of a wide one. Its items
/// are QXConfirmationAction.
QXModal {
    id: root

    property string title
    default property alias items: column.data

    readonly property bool isCard: width >= 640
    readonly property real edge: QXTheme.spacing
    readonly property real bottomEdge: edge + presentationLayer.safeArea.bottom

    objectName: "QXConfirmationDialog"

    Accessible.role: Accessible.Dialog
    Accessible.name: title

    Keys.onUpPressed: column.step(-1)
    Keys.onDownPressed: column.step(1)

    Item {
        id: panel

        readonly property real available: root.height - root.bottomEdge - root.edge - QXTheme.touchTarget
        readonly property real smallestHeight: cancel.height + root.edge + QXTheme.touchTarget
        readonly property real hidden: (1 - root.progress) * (root.height - settled)
        readonly property real settled: root.isCard ? (root.height - height) / 2
                                                    : root.height - height - root.bottomEdge

        x: (root.width - width) / 2
        y: settled + hidden
        width: Math.min(root.isCard ? 320 * Math.max(1, QXTheme.scale) : 480, root.width - 2 * root.edge)
        height: Math.min(choices.implicitHeight + root.edge + cancel.height, Math.max(available, smallestHeight))

        Rectangle {
            id: card

            width: parent.width
            height: parent.height - cancel.height - root.edge
            radius: QXTheme.cardRadius
            color: QXTheme.elevatedBackground

            MouseArea {
                anchors.fill: parent
            }

            QXScrollArea {
                id: scroller

                anchors.fill: parent
                contentHeight: choices.implicitHeight

                Column {
                    id: choices

                    width: card.width

                    QXText {
                        width: parent.width
                        padding: QXTheme.margin
                        text: root.title
                        font: QXTheme.footnote
                        color: QXTheme.secondaryLabel
                        wrapMode: Text.Wrap
                        horizontalAlignment: Text.AlignHCenter
                        Accessible.role: Accessible.Heading
                        Accessible.name: text
                    }

                    QXSeparator {
                        width: parent.width
                    }

                    QXMenuColumn {
                        id: column

                        width: parent.width
                        scrollArea: scroller
                        after: cancel
                        onCloseRequested: root.dismissRequested()
                    }
                }
            }
        }

        QXConfirmationAction {
            id: cancel

            objectName: "QXCancelButton"
            anchors.bottom: parent.bottom
            width: parent.width
            text: qsTranslate("Quorvix", "Cancel")
            font: QXTheme.headline
            radius: QXTheme.cardRadius
            fill: QXTheme.elevatedBackground
            isLast: true
            onClicked: root.dismissRequested()
        }
    }
}
