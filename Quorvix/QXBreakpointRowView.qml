import QtQuick
import Quorvix.Controls

/// One breakpoint rule, with the controls that delete it. A swipe to the leading edge shows a delete button;
/// a swipe across half the row deletes the rule.
Item {
    id: root

    required property string displayText
    property bool isEditing: false
    property bool isCurrent: false
    /// The visible part of the delete button: 0 is none, 1 is all of it, and a larger value stretches it.
    property real uncovered: 0

    readonly property string shownText: QXShortText.beginning(displayText)
    readonly property real direction: QXTheme.isMirrored ? -1 : 1
    readonly property real distance: uncovered * deleteButton.implicitWidth

    signal deleteRequested

    objectName: "QXBreakpointRow"
    // As high without the hint as with it.
    implicitHeight: Math.max(QXTheme.touchTarget,
                             lines.implicitHeight + (hint.visible ? 20 : 20 + hint.implicitHeight + lines.spacing))
    clip: true
    onIsEditingChanged: root.uncovered = 0

    Accessible.name: shownText
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
            else if (root.distance > root.width / 2)
                root.deleteRequested();
            else
                root.uncovered = root.uncovered > 0.5 ? 1 : 0;
        }
        onActiveTranslationChanged: {
            const swiped = -root.direction * activeTranslation.x;
            if (active)
                root.uncovered = Math.max(0, Math.min(uncoveredBefore + swiped / deleteButton.implicitWidth,
                                                      root.width / deleteButton.implicitWidth));
        }
    }

    TapHandler {
        onTapped: root.uncovered = 0
    }

    QXDeleteButton {
        id: deleteButton

        objectName: "QXBreakpointDeleteButton"
        anchors.right: parent.right
        width: Math.max(implicitWidth, root.distance)
        height: root.height
        visible: root.uncovered > 0
        onClicked: root.deleteRequested()
    }

    Rectangle {
        x: -root.direction * root.distance
        width: root.width
        height: root.height
        color: QXTheme.secondaryBackground

        QXFocusRing {
            anchors.fill: parent
            anchors.margins: 2
            visible: root.isCurrent
        }

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
            text: qsTranslate("Quorvix", "Delete %1").arg(root.shownText)
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
                text: root.shownText
                font: QXTheme.subheadline
                wrapMode: Text.Wrap
                maximumLineCount: QXTheme.isLargeText ? 6 : 4
                elide: Text.ElideRight
                Accessible.ignored: true
            }

            QXText {
                id: hint

                width: parent.width
                visible: !root.isEditing
                text: qsTranslate("Quorvix", "Swipe to delete.")
                font: QXTheme.caption
                color: QXTheme.secondaryLabel
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }
    }

    Behavior on uncovered {
        enabled: QXTheme.animates && !swipe.active

        NumberAnimation {
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }
}
