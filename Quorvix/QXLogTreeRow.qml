pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix.Text
import Quorvix.Screens

/// One node of a log tree: its depth, whether it is expanded, its key, its value and its kind.
///
/// The value stands below the key when it is shown in full, or when both do not fit beside each other.
QXListRow {
    id: root

    required property int index
    required property string key
    required property string summary
    required property int kind
    required property string kindName
    required property int depth
    required property bool isExpanded
    required property bool hasChildren
    /// The whole value of a row that is unfolded; a document if it is long.
    required property string wholeValue
    required property QXTextDocument document
    /// The list, which shows the visible part of a long value.
    required property Flickable page
    /// The indentation of one level.
    required property real indentationWidth

    property real wholeHeight: 0

    // Deep rows show their level as a number instead of more indentation, so that the key has enough width.
    readonly property real fullIndentation: depth * indentationWidth
    readonly property real indentSpace: (width - 2 * columnMargin) * 0.4 / Math.max(1, QXTheme.scale)
    readonly property real largestIndentation: Math.floor(indentSpace / indentationWidth) * indentationWidth
    readonly property bool isDeep: fullIndentation > largestIndentation

    readonly property bool isUnfolded: wholeValue.length > 0 || document !== null
    /// Whether a tap shows the whole value, or only its beginning again.
    readonly property bool canUnfold: !hasChildren && (isUnfolded || (valueText.truncated || keyText.truncated))
    readonly property bool isStacked: keyText.visible
                                      && (isUnfolded || (QXTheme.isLargeText && summary.length > 0 && !texts.fitsOneLine))
    /// Whether a word of the whole key has no room beside the badge.
    readonly property bool isBelowBadge: isUnfolded && key.length > 0
                                         && keyText.implicitWidth * QXShortText.longestWord(key) > texts.width * key.length
    // The badge and the first line of the key have the same middle.
    readonly property real keyLine: keyText.visible ? keyText.implicitHeight / Math.max(1, keyText.lineCount) : 0
    readonly property real badgeOffset: isBelowBadge ? 0 : Math.max(0, (keyLine - badge.height) / 2)
    readonly property real keyOffset: isBelowBadge ? badge.height + 2 : Math.max(0, (badge.height - keyLine) / 2)
    readonly property real firstLine: Math.max(badgeOffset + badge.height, keyText.visible ? keyOffset + keyText.height : 0)
    readonly property real valueHeight: isUnfolded ? wholeHeight : valueText.implicitHeight
    readonly property real linesHeight: isStacked ? firstLine + 2 + valueHeight : Math.max(firstLine, valueHeight)
    readonly property real linesTop: (height - linesHeight) / 2

    /// The user requests the menu with a right click or a long press.
    signal menuRequested(point position)

    objectName: "QXLogTreeRow"
    // An even height keeps the position of a row far down a long list exact in single precision.
    implicitHeight: Math.max(QXTheme.touchTarget,
                             2 * Math.ceil((linesHeight + 2 * rowPadding) / 2))

    Accessible.ignored: true

    onPressAndHold: root.menuRequested(Qt.point(root.pressX, root.pressY))

    // The row itself would be told as a row of a list.
    Item {
        objectName: "QXLogTreeNode"
        anchors.fill: parent

        Accessible.role: Accessible.TreeItem
        Accessible.name: (root.key ? root.key + ", " : "") + (root.summary ? root.summary + ", " : "") + root.kindName
        Accessible.description: !root.hasChildren && !root.canUnfold ? ""
                              : root.isExpanded || root.isUnfolded ? qsTranslate("Quorvix", "Expanded") : qsTranslate("Quorvix", "Collapsed")
        Accessible.focusable: true
        Accessible.focused: root.isCurrent
        Accessible.selectable: true
        Accessible.selected: root.isCurrent
        Accessible.onPressAction: root.clicked()
    }

    TapHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        acceptedButtons: Qt.RightButton
        onTapped: eventPoint => root.menuRequested(eventPoint.position)
    }

    QXText {
        anchors.right: chevron.left
        anchors.rightMargin: 4
        anchors.verticalCenter: chevron.verticalCenter
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
        y: badge.y + (badge.height - height) / 2
        visible: root.hasChildren
        symbol: root.isExpanded ? "chevron.down" : "chevron.right"
        size: 12 * Math.max(1, QXTheme.scale)
        mirror: root.mirrored && !root.isExpanded
    }

    Item {
        id: texts

        readonly property real spacing: keyText.visible && valueText.visible ? QXTheme.spacing : 0
        readonly property real availableWidth: Math.max(0, width - spacing)
        readonly property bool fitsOneLine: keyText.implicitWidth + valueText.implicitWidth + QXTheme.spacing <= width

        anchors.left: chevron.right
        anchors.leftMargin: QXTheme.spacing
        anchors.right: badge.left
        anchors.rightMargin: QXTheme.spacing
        height: parent.height

        QXText {
            id: keyText

            objectName: "QXLogTreeKey"
            anchors.left: parent.left
            y: root.isStacked ? root.linesTop + root.keyOffset
                              : (parent.height - height) / 2
            // Beside a value, the key never uses all of the width: the value keeps a part of it.
            width: root.isStacked ? texts.width + (root.isBelowBadge ? QXTheme.spacing + badge.width : 0)
                                  : Math.min(implicitWidth, Math.max(texts.availableWidth * 0.6,
                                                                     texts.availableWidth - valueText.implicitWidth))
            visible: root.key.length > 0
            text: root.isUnfolded ? QXShortText.breakable(root.key) : root.key
            font: Qt.font({
                family: QXTheme.appearance.monospacedFamily,
                pixelSize: Math.round(14 * QXTheme.scale),
                weight: Font.Medium
            })
            wrapMode: root.isUnfolded ? Text.Wrap : Text.NoWrap
            elide: Text.ElideRight
            Accessible.ignored: true
        }

        QXText {
            id: valueText

            objectName: "QXLogTreeValue"
            anchors.left: keyText.visible && !root.isStacked ? keyText.right : parent.left
            anchors.leftMargin: root.isStacked ? 0 : texts.spacing
            width: root.isStacked ? texts.width + QXTheme.spacing + badge.width
                                  : Math.max(0, texts.availableWidth - (keyText.visible ? keyText.width : 0))
            y: root.isStacked ? root.linesTop + root.firstLine + 2 : (parent.height - height) / 2
            visible: root.summary.length > 0 && !root.isUnfolded
            text: root.summary
            font: QXTheme.text(14, Font.Normal)
            color: QXTheme.secondaryLabel
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }

    Repeater {
        model: root.isUnfolded ? 1 : 0

        delegate: QXLogTreeValue {
            x: root.isStacked && root.mirrored ? badge.x : texts.x
            width: texts.width + (root.isStacked ? QXTheme.spacing + badge.width : 0)
            y: root.isStacked ? root.linesTop + root.firstLine + 2 : root.linesTop
            text: root.wholeValue
            document: root.document
            page: root.page
            onImplicitHeightChanged: root.wholeHeight = implicitHeight
            Component.onCompleted: root.wholeHeight = implicitHeight
        }
    }

    QXKindBadge {
        id: badge

        anchors.right: parent.right
        anchors.rightMargin: root.columnMargin
        y: root.isStacked ? root.linesTop + root.badgeOffset
                          : (parent.height - height) / 2
        kind: root.kind
        name: root.kindName
    }

    QXSeparator {
        anchors.left: texts.left
        anchors.right: parent.right
        anchors.rightMargin: root.edge
        anchors.bottom: parent.bottom
    }
}
