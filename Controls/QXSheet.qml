import QtQuick
import Quorvix.Controls

/// A sheet at the bottom of a narrow window, or a card in the middle of a wide one.
///
/// The user closes it with a swipe down, also of its content while that is at its beginning, with Esc, or with a tap
/// beside it, and can catch it while it moves.
QXModal {
    id: root

    property string title
    /// The preferred height of the content, without the header.
    property real contentHeight: 400
    property string doneName: "QXSheetDone"
    property alias doneText: done.text
    property alias trailing: trailingItems.data
    /// The area that scrolls for keys that no control handles.
    property QXScrollArea scrollArea: null
    /// The colour of the sheet.
    property color ground: QXTheme.secondaryBackground
    default property alias sheetContent: contentItem.data

    readonly property bool isCard: width >= 640

    leavesFirst: true
    glide.extent: isCard ? (height + card.height) / 2 : card.height
    glide.give: 24

    Accessible.role: Accessible.Dialog
    Accessible.name: heading.text

    Keys.onPressed: event => event.accepted = root.scrollArea?.scrollByKey(event.key) ?? false

    Item {
        id: card

        /// The width of the visible edges.
        readonly property real edge: root.isCard ? panel.border.width : 0
        readonly property real bottomInset: root.isCard ? edge : root.presentationLayer.safeArea.bottom
        readonly property real available: root.height - (root.isCard ? 0.16 * root.height : QXTheme.touchTarget)
        readonly property real smallestHeight: header.height + QXTheme.touchTarget

        width: root.isCard ? Math.min(560, root.width - 2 * QXTheme.margin) : root.width
        height: Math.min(header.height + root.contentHeight + bottomInset, Math.max(available, smallestHeight))
        x: (root.width - width) / 2
        y: (root.isCard ? (root.height - height) / 2 : root.height - height) + (1 - root.progress) * root.glide.extent

        // The lower corners and the edges of a sheet that fills the window's width are beyond the window.
        QXCard {
            id: panel

            anchors.fill: parent
            anchors.leftMargin: root.isCard ? 0 : -border.width
            anchors.rightMargin: anchors.leftMargin
            anchors.bottomMargin: root.isCard ? 0 : -radius - root.glide.give
            color: root.ground
        }

        MouseArea {
            anchors.fill: parent
            onWheel: wheel => wheel.accepted = true
        }

        Item {
            id: header

            width: parent.width
            height: QXTheme.touchTarget + 14

            DragHandler {
                target: null
                xAxis.enabled: false
                onCentroidChanged: {
                    if (active)
                        root.glide.follow(centroid.scenePosition.y);
                }
                onActiveChanged: {
                    if (active)
                        root.glide.hold(centroid.scenePosition.y);
                    else
                        root.glide.release();
                }
            }

            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                y: 6
                width: 36
                height: 5
                radius: 2.5
                visible: !root.isCard
                color: QXTheme.tertiaryLabel
            }

            QXLabel {
                id: heading

                anchors.verticalCenter: done.verticalCenter
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.margins: Math.max(done.width, trailingItems.width) + 2 * QXTheme.spacing
                content: root.title
                font: QXTheme.barTitle
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 12
                elide: Text.ElideRight
                horizontalAlignment: Text.AlignHCenter
                Accessible.role: Accessible.Heading
                Accessible.name: text
                Accessible.ignored: text.length === 0
            }

            QXTextButton {
                id: done

                readonly property bool leads: trailingItems.children.length > 0

                objectName: root.doneName
                anchors.bottom: parent.bottom
                anchors.bottomMargin: 3
                anchors.left: leads ? parent.left : undefined
                anchors.right: leads ? undefined : parent.right
                anchors.margins: QXTheme.spacing
                text: qsTranslate("Quorvix", "Done")
                font: QXTheme.barTitle
                focus: true
                onClicked: root.leave()
            }

            Row {
                id: trailingItems

                anchors.right: parent.right
                anchors.rightMargin: QXTheme.spacing
                anchors.verticalCenter: done.verticalCenter
            }
        }

        QXPullArea {
            anchors.top: header.bottom
            x: card.edge
            width: parent.width - 2 * card.edge
            height: Math.max(0, parent.height - header.height - card.bottomInset)
            spring: root.glide

            FocusScope {
                id: contentItem

                anchors.fill: parent
            }
        }
    }

    // Beside the sheet, which is disabled while it leaves.
    QXCatcher {
        parent: root.presentationLayer
        anchors.fill: parent
        z: root.z + 0.5
        visible: root.visible && root.presented
        containmentMask: card
        glide: root.glide
        isVertical: true
    }
}
