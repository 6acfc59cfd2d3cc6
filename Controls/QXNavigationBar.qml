import QtQuick
import Quorvix.Controls

/// The bar at the top of a screen: buttons at both ends, and a large title that becomes a small one as the
/// content below scrolls.
///
/// The content starts at `collapsedHeight` and keeps `largeTitleHeight` free at its top.
FocusScope {
    id: root

    required property string title
    /// The view that scrolls below the bar; without it the title stays small.
    property Flickable flickable: null
    property alias leading: leadingItems.data
    property alias trailing: trailingItems.data
    /// Items below the titles, always visible.
    property alias accessory: accessoryItem.data

    /// What the bar shows of its title.
    readonly property string shownTitle: QXShortText.beginning(title)
    readonly property real largeTitleHeight: flickable ? Math.ceil(largeTitle.implicitHeight) + 12 : 0
    readonly property real collapsedHeight: QXTheme.touchTarget + accessoryItem.height
    readonly property real scrolled: flickable ? flickable.contentY - flickable.originY + flickable.topMargin : 0
    readonly property real largeTitleRoom: Math.max(0, largeTitleHeight - scrolled)
    readonly property bool isCollapsed: largeTitleRoom < largeTitleHeight * 0.4
    readonly property real columnMargin: QXTheme.columnMargin(width)

    height: collapsedHeight + largeTitleRoom
    z: 1

    TextMetrics {
        id: metrics

        readonly property real room: root.width - 2 * root.columnMargin
        readonly property int fittingSize: Math.floor(font.pixelSize * room / Math.max(1, advanceWidth))

        font: QXTheme.largeTitle
        text: root.shownTitle
    }

    Rectangle {
        anchors.fill: parent
        color: QXTheme.background
    }

    Item {
        anchors.top: inlineBar.bottom
        width: root.width
        height: root.largeTitleRoom
        clip: true

        QXText {
            id: largeTitle

            objectName: "QXLargeTitle"
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            anchors.leftMargin: root.columnMargin
            anchors.rightMargin: root.columnMargin
            anchors.bottomMargin: QXTheme.spacing
            visible: root.flickable !== null
            text: root.shownTitle
            // A font that fits, and not the font size mode of the text, which keeps the height of the larger font.
            font: Qt.font({
                family: QXTheme.largeTitle.family,
                pixelSize: Math.max(QXTheme.barTitle.pixelSize, Math.min(metrics.font.pixelSize, metrics.fittingSize)),
                weight: QXTheme.largeTitle.weight
            })
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
            Accessible.name: text
            Accessible.ignored: !visible || root.isCollapsed
        }
    }

    Item {
        id: inlineBar

        width: root.width
        height: QXTheme.touchTarget

        Row {
            id: leadingItems

            anchors.left: parent.left
            anchors.leftMargin: Math.max(2, root.columnMargin - 11)
            anchors.verticalCenter: parent.verticalCenter
        }

        QXText {
            // The title is in the middle unless the buttons of one side need that room.
            readonly property Item before: QXTheme.isMirrored ? trailingItems : leadingItems
            readonly property Item after: QXTheme.isMirrored ? leadingItems : trailingItems
            readonly property real roomStart: before.x + before.width + 4
            readonly property real roomEnd: (after.width > 0 ? after.x : root.width) - 4

            objectName: "QXSmallTitle"
            x: Math.max(roomStart, Math.min((root.width - width) / 2, roomEnd - width))
            anchors.verticalCenter: parent.verticalCenter
            width: Math.max(0, Math.min(implicitWidth, roomEnd - roomStart))
            text: root.shownTitle
            font: QXTheme.barTitle
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 12
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            opacity: root.flickable === null || root.isCollapsed ? 1 : 0
            Accessible.role: Accessible.Heading
            Accessible.name: text
            Accessible.ignored: root.flickable !== null && !root.isCollapsed

            Behavior on opacity {
                enabled: QXTheme.animates

                NumberAnimation {
                    duration: QXTheme.shortDuration
                }
            }
        }

        Row {
            id: trailingItems

            anchors.right: parent.right
            anchors.rightMargin: Math.max(2, root.columnMargin - 11)
            anchors.verticalCenter: parent.verticalCenter
        }
    }

    FocusScope {
        id: accessoryItem

        anchors.bottom: parent.bottom
        x: root.columnMargin
        width: root.width - 2 * x
        height: childrenRect.height > 0 ? childrenRect.height + 12 : 0
    }

    QXSeparator {
        anchors.bottom: parent.bottom
        width: root.width
        opacity: root.flickable === null || root.scrolled >= root.largeTitleHeight ? 1 : 0

        Behavior on opacity {
            enabled: QXTheme.animates

            NumberAnimation {
                duration: QXTheme.shortDuration
            }
        }
    }
}
