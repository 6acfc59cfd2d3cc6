import QtQuick
import Quorvix.Controls

/// A sheet at the bottom of a narrow window, or a card in the middle of a wide one.
///
/// The user closes it with a swipe down, with Esc, or with a tap beside it.
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
    default property alias sheetContent: contentItem.data

    readonly property bool isCard: width >= 640
    property real dragOffset: 0

    Accessible.role: Accessible.Dialog
    Accessible.name: heading.text

    Keys.onPressed: event => event.accepted = root.scrollArea?.scrollByKey(event.key) ?? false

    Rectangle {
        id: card

        readonly property real bottomInset: root.isCard ? 0 : root.presentationLayer.safeArea.bottom
        readonly property real available: root.height - (root.isCard ? 0.16 * root.height : QXTheme.touchTarget)
        readonly property real smallestHeight: header.height + QXTheme.touchTarget

        width: root.isCard ? Math.min(560, root.width - 2 * QXTheme.margin) : root.width
        height: Math.min(header.height + root.contentHeight + bottomInset, Math.max(available, smallestHeight))
        x: (root.width - width) / 2
        y: (root.isCard ? (root.height - height) / 2 : root.height - height)
           + (1 - root.progress) * (root.isCard ? (root.height + height) / 2 : height) + root.dragOffset
        radius: QXTheme.cardRadius
        color: QXTheme.secondaryBackground

        // Covers the lower corners: only the upper corners of a sheet are round.
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: parent.radius
            anchors.bottomMargin: -parent.radius - Math.max(0, -root.dragOffset)
            visible: !root.isCard
            color: parent.color
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
                onActiveTranslationChanged: root.dragOffset = Math.max(0, activeTranslation.y)
                onActiveChanged: {
                    if (active)
                        return;
                    if (root.dragOffset > card.height * 0.3 || centroid.velocity.y > 800)
                        root.dismissRequested();
                    else
                        settle.restart();
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
                onClicked: root.dismissRequested()
            }

            Row {
                id: trailingItems

                anchors.right: parent.right
                anchors.rightMargin: QXTheme.spacing
                anchors.verticalCenter: done.verticalCenter
            }
        }

        FocusScope {
            id: contentItem

            anchors.top: header.bottom
            width: parent.width
            height: Math.max(0, parent.height - header.height - card.bottomInset)
        }
    }

    NumberAnimation {
        id: settle

        target: root
        property: "dragOffset"
        to: 0
        duration: 200
        easing.type: Easing.OutCubic
    }

    onPresentedChanged: {
        if (presented)
            root.dragOffset = 0;
    }
}
