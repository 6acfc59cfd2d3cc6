import QtQuick
import Quorvix.Controls
import Quorvix.Screens

/// One node of a log tree: its depth, whether it is expanded, its key, its value and its kind.
QXListRow {
    id: root

    required property string key
    required property string summary
    required property int kind
    required property string kindName
    required property int depth
    required property bool isExpanded
    required property bool hasChildren
    /// The indentation of one level.
    required property real indentationWidth

    // Deep rows show their level as a number instead of more indentation, so that the key has enough width.
    readonly property real fullIndentation: depth * indentationWidth
    readonly property real indentSpace: (width - 2 * columnMargin) * 0.4 / Math.max(1, QXTheme.scale)
    readonly property real largestIndentation: Math.floor(indentSpace / indentationWidth) * indentationWidth
    readonly property bool isDeep: fullIndentation > largestIndentation

    /// The user requests the menu with a right click or a long press.
    signal menuRequested(point position)

    objectName: "QXLogTreeRow"
    // An even height keeps the position of a row far down a long list exact in single precision.
    implicitHeight: Math.max(QXTheme.touchTarget,
                             2 * Math.ceil((Math.max(keyText.implicitHeight, badge.height) + 2 * rowPadding) / 2))

    Accessible.role: Accessible.TreeItem
    Accessible.name: (key ? key + ", " : "") + (summary ? summary + ", " : "") + kindName
    Accessible.description: !hasChildren ? ""
                          : isExpanded ? qsTranslate("Quorvix", "Expanded") : qsTranslate("Quorvix", "Collapsed")

    onPressAndHold: root.menuRequested(Qt.point(root.pressX, root.pressY))

    TapHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        acceptedButtons: Qt.RightButton
        onTapped: eventPoint => root.menuRequested(eventPoint.position)
    }

    QXText {
        anchors.right: chevron.left
        anchors.rightMargin: 4
        anchors.verticalCenter: parent.verticalCenter
        visible: root.isDeep
        text: root.depth
        font: QXTheme.caption
        color: QXTheme.secondaryLabel
        Accessible.ignored: true
    }

    QXIcon {
        id: chevron

        objectName: "QXLogTreeChevron"
        anchors.left: parent.left
        anchors.leftMargin: root.columnMargin + Math.min(root.fullIndentation, root.largestIndentation)
        anchors.verticalCenter: parent.verticalCenter
        visible: root.hasChildren
        symbol: root.isExpanded ? "chevron.down" : "chevron.right"
        size: 12 * Math.max(1, QXTheme.scale)
        mirror: root.mirrored && !root.isExpanded
    }

    Item {
        id: texts

        readonly property real spacing: keyText.visible && valueText.visible ? QXTheme.spacing : 0
        readonly property real availableWidth: Math.max(0, width - spacing)

        anchors.left: chevron.right
        anchors.leftMargin: QXTheme.spacing
        anchors.right: badge.left
        anchors.rightMargin: QXTheme.spacing
        height: parent.height

        QXText {
            id: keyText

            objectName: "QXLogTreeKey"
            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            // The key never uses all of the width: the value keeps a part of it.
            width: Math.min(implicitWidth, Math.max(texts.availableWidth * 0.6,
                                                    texts.availableWidth - valueText.implicitWidth))
            visible: root.key.length > 0
            text: root.key
            font: Qt.font({
                family: QXTheme.appearance.monospacedFamily,
                pixelSize: Math.round(14 * QXTheme.scale),
                weight: Font.Medium
            })
            elide: Text.ElideRight
            Accessible.ignored: true
        }

        QXText {
            id: valueText

            objectName: "QXLogTreeValue"
            anchors.left: keyText.visible ? keyText.right : parent.left
            anchors.leftMargin: texts.spacing
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: root.summary.length > 0
            text: root.summary
            font: QXTheme.text(14, Font.Normal)
            color: QXTheme.secondaryLabel
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }

    QXKindBadge {
        id: badge

        anchors.right: parent.right
        anchors.rightMargin: root.columnMargin
        anchors.verticalCenter: parent.verticalCenter
        kind: root.kind
        name: root.kindName
    }

    QXSeparator {
        anchors.left: texts.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
    }
}
