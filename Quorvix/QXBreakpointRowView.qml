import QtQuick
import Quorvix

/// One breakpoint rule, with its ways to be deleted. A swipe towards its beginning uncovers a button.
Item {
    id: root

    required property string displayText
    property bool isEditing: false
    property bool isCurrent: false
    /// How much of the button has been uncovered, from 0 to 1.
    property real uncovered: 0

    readonly property real direction: QXTheme.isMirrored ? -1 : 1
    readonly property real shift: -direction * uncovered * deleteButton.width

    signal deleteRequested

    objectName: "QXBreakpointRow"
    implicitHeight: Math.max(QXTheme.touchTarget, lines.implicitHeight + 20)
    clip: true
    onIsEditingChanged: root.uncovered = 0

    Accessible.name: displayText
    Accessible.role: Accessible.ListItem
    Accessible.onPressAction: {
        if (root.isEditing)
            root.deleteRequested();
    }

    DragHandler {
        id: swipe

        property real uncoveredBefore: 0

        target: null
        enabled: !root.isEditing
        yAxis.enabled: false
        onActiveChanged: {
            if (active)
                uncoveredBefore = root.uncovered;
            else
                root.uncovered = root.uncovered > 0.5 ? 1 : 0;
        }
        onActiveTranslationChanged: {
            if (active)
                root.uncovered = Math.max(0, Math.min(1, uncoveredBefore
                                          - root.direction * activeTranslation.x / deleteButton.width));
        }
    }

    TapHandler {
        onTapped: root.uncovered = 0
    }

    QXDeleteButton {
        id: deleteButton

        objectName: "QXBreakpointDeleteButton"
        anchors.right: parent.right
        height: root.height
        visible: root.uncovered > 0
        onClicked: root.deleteRequested()
    }

    Rectangle {
        x: root.shift
        width: root.width
        height: root.height
        color: root.isCurrent ? QXTheme.pressedFill : QXTheme.secondaryBackground

        QXSeparator {
            anchors.left: parent.left
            anchors.leftMargin: QXTheme.margin
            anchors.right: parent.right
            anchors.bottom: parent.bottom
        }

        QXToolButton {
            id: minus

            objectName: "QXBreakpointMinusButton"
            anchors.left: parent.left
            anchors.leftMargin: 4
            anchors.verticalCenter: parent.verticalCenter
            visible: root.isEditing
            symbol: "minus.circle.fill"
            color: QXTheme.red
            text: qsTranslate("Quorvix", "Delete") + " " + root.displayText
            onClicked: root.deleteRequested()
        }

        Column {
            id: lines

            anchors.left: minus.visible ? minus.right : parent.left
            anchors.leftMargin: minus.visible ? 4 : QXTheme.margin
            anchors.right: parent.right
            anchors.rightMargin: QXTheme.margin
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2

            QXText {
                width: parent.width
                text: root.displayText
                font: QXTheme.subheadline
                wrapMode: Text.Wrap
                maximumLineCount: 3
                elide: Text.ElideRight
                Accessible.ignored: true
            }

            QXText {
                width: parent.width
                text: qsTranslate("Quorvix", "Swipe to delete.")
                font: QXTheme.caption
                color: QXTheme.secondaryLabel
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }

    Behavior on uncovered {
        enabled: !swipe.active

        NumberAnimation {
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }
}
