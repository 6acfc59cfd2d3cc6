import QtQuick
import Quorvix.Controls

/// A dialog with several choices: at the bottom of a narrow window, and in a wide one beside the button that opened it,
/// or in the middle. Its items are QXConfirmationAction.
QXModal {
    id: root

    property string title
    /// The button that opens the dialog.
    property Item source: null
    default property alias items: column.data

    readonly property bool isCard: width >= 640
    readonly property bool isPopover: isCard && source !== null
    /// Where the button is.
    property rect place
    readonly property real edge: QXTheme.spacing
    readonly property real bottomEdge: edge + presentationLayer.safeArea.bottom

    objectName: "QXConfirmationDialog"
    scrim: isPopover ? QXTheme.menuScrim : QXTheme.scrim

    Accessible.role: Accessible.Dialog
    Accessible.name: title

    Keys.onUpPressed: column.step(-1)
    Keys.onDownPressed: column.step(1)

    Item {
        id: panel

        readonly property real topEdge: root.edge + (root.isPopover ? root.presentationLayer.safeArea.top : QXTheme.touchTarget)
        readonly property real available: root.height - root.bottomEdge - topEdge
        readonly property real smallestHeight: cancel.height + root.edge + QXTheme.touchTarget
        readonly property real hidden: root.isPopover ? 0 : (1 - root.progress) * (root.height - settled)
        readonly property real lowest: root.height - height - root.bottomEdge
        readonly property real settled: root.isPopover ? Math.max(topEdge, Math.min(root.place.bottom, lowest))
                                      : root.isCard ? (root.height - height) / 2 : lowest
        readonly property real beside: QXTheme.isMirrored ? root.place.left : root.place.right - width

        x: root.isPopover ? Math.max(root.edge, Math.min(beside, root.width - width - root.edge))
                          : (root.width - width) / 2
        y: settled + hidden
        opacity: root.isPopover ? root.progress : 1
        scale: root.isPopover ? 0.9 + 0.1 * root.progress : 1
        transformOrigin: QXTheme.isMirrored ? Item.TopLeft : Item.TopRight
        width: Math.min(root.isCard ? 320 * Math.max(1, QXTheme.scale) : 480, root.width - 2 * root.edge)
        height: Math.min(choices.implicitHeight + 2 * card.border.width + root.edge + cancel.height,
                         Math.max(available, smallestHeight))

        QXShadow {
            card: card
            visible: root.isPopover
        }

        QXShadow {
            card: cancelCard
            visible: root.isPopover
        }

        QXCard {
            id: card

            width: parent.width
            height: parent.height - cancel.height - root.edge

            MouseArea {
                anchors.fill: parent
            }

            QXScrollArea {
                id: scroller

                anchors.fill: parent
                anchors.margins: card.border.width
                contentHeight: choices.implicitHeight

                Column {
                    id: choices

                    width: scroller.width

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

            QXScrollHint {
                area: scroller
                ground: card.color
                radius: card.radius
            }
        }

        QXCard {
            id: cancelCard

            anchors.fill: cancel
        }

        QXConfirmationAction {
            id: cancel

            objectName: "QXCancelButton"
            anchors.bottom: parent.bottom
            width: parent.width
            text: qsTranslate("Quorvix", "Cancel")
            font: QXTheme.headline
            radius: QXTheme.cardRadius
            isLast: true
            onClicked: root.dismissRequested()
        }
    }

    // The button gets its place in a new size of the window later than the dialog.
    Timer {
        id: later

        interval: 0
        onTriggered: root.follow()
    }

    onPresentedChanged: root.follow()
    onWidthChanged: later.start()
    onHeightChanged: later.start()

    function follow() {
        if (root.presented && root.source)
            root.place = root.mapFromItem(root.source, 0, 0, root.source.width, root.source.height);
    }
}
