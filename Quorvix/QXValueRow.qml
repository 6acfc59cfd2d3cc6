pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix.Text

/// A label and its value, side by side or, where large text leaves no room for that, one above the other; with a menu for
/// the value. Not a control, because Qt 6.4 tells nobody that a control is a text.
Item {
    id: root

    required property string label
    required property string text
    property color textColor: QXTheme.label
    property real columnMargin: QXTheme.margin
    /// The document of a value that is too long for a single text item; null for other values.
    property QXTextDocument document: null
    property Flickable page: null
    property real blockHeight: 0

    readonly property real besideWidth: 100 * Math.max(1, QXTheme.scale)
    readonly property bool isStacked: QXTheme.isLargeText || besideWidth > 0.4 * columnWidth
    readonly property real valueHeight: document ? blockHeight : value.implicitHeight
    readonly property real textHeight: isStacked ? title.implicitHeight + valueHeight
                                                 : Math.max(title.implicitHeight, valueHeight)
    readonly property bool visualFocus: focusReason.isVisual
    readonly property real textTop: (height - textHeight) / 2
    readonly property real valueTop: textTop + (isStacked ? title.implicitHeight : 0)
    readonly property real columnWidth: width - 2 * columnMargin
    readonly property real labelWidth: isStacked ? columnWidth : besideWidth

    /// Emitted for Ctrl+C.
    signal copyRequested
    /// Requests the context menu; @p position is in the coordinates of this row.
    signal contextMenuRequested(point position)

    objectName: "QXValueRow"
    implicitWidth: 320
    implicitHeight: Math.max(QXTheme.touchTarget, textHeight + 2 * QXTheme.spacing)
    activeFocusOnTab: true

    Accessible.role: Accessible.StaticText
    Accessible.name: title.text + ", " + (document ? document.beginning : text)
    Accessible.focusable: true

    Keys.onPressed: event => {
        if (event.matches(StandardKey.Copy)) {
            root.copyRequested();
            return;
        }
        event.accepted = event.key === Qt.Key_Menu
                      || (event.key === Qt.Key_F10 && (event.modifiers & Qt.ShiftModifier) !== 0);
        if (event.accepted)
            root.contextMenuRequested(Qt.point(QXTheme.isMirrored ? value.x + value.width : value.x, root.height));
    }

    QXFocusReason {
        id: focusReason

        item: root
    }

    Rectangle {
        anchors.fill: parent
        anchors.leftMargin: root.columnMargin - QXTheme.spacing
        anchors.rightMargin: anchors.leftMargin
        radius: QXTheme.cornerRadius
        color: area.isHeld ? QXTheme.fill : "transparent"

        QXFocusRing {
            anchors.fill: parent
            visible: root.visualFocus
        }
    }

    QXLabel {
        id: title

        anchors.left: parent.left
        anchors.leftMargin: root.columnMargin
        y: root.textTop
        width: root.labelWidth
        content: root.label
        font: QXTheme.subheadlineSemibold
        color: QXTheme.secondaryLabel
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    QXText {
        id: value

        // Not beside the title: the title moves with the height of the row while it lays itself out, and the
        // value would change the height once more.
        anchors.left: parent.left
        anchors.leftMargin: root.columnMargin + (root.isStacked ? 0 : root.labelWidth + QXTheme.spacing)
        anchors.right: parent.right
        anchors.rightMargin: root.columnMargin
        y: root.valueTop
        text: root.document ? "" : root.text
        font: QXTheme.subheadline
        color: root.textColor
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    Repeater {
        model: root.document ? 1 : 0

        delegate: QXTextBlock {
            id: block

            x: value.x
            y: root.valueTop
            width: value.width
            page: root.page
            document: root.document
            onImplicitHeightChanged: root.blockHeight = implicitHeight
            onContextMenuRequested: position => root.contextMenuRequested(block.mapToItem(root, position))
            Component.onCompleted: root.blockHeight = implicitHeight
        }
    }

    MouseArea {
        id: area

        property bool isHeld: false

        anchors.fill: parent
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onClicked: mouse => {
            root.forceActiveFocus(Qt.MouseFocusReason);
            if (mouse.button === Qt.RightButton)
                root.contextMenuRequested(Qt.point(mouse.x, mouse.y));
        }
        onPressAndHold: mouse => {
            root.forceActiveFocus(Qt.MouseFocusReason);
            root.contextMenuRequested(Qt.point(mouse.x, mouse.y));
        }
        onPressed: mouse => isHeld = mouse.button === Qt.LeftButton
        onReleased: isHeld = false
        onCanceled: isHeld = false
    }
}
