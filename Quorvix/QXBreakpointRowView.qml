pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quorvix

/// One breakpoint rule, with its ways to be deleted.
T.SwipeDelegate {
    id: root

    required property string displayText
    property bool isEditing: false
    property bool isCurrent: false

    signal deleteRequested

    objectName: "QXBreakpointRow"
    implicitHeight: Math.max(QXTheme.touchTarget, lines.implicitHeight + 20)
    focusPolicy: Qt.NoFocus

    Accessible.name: displayText
    Accessible.role: Accessible.ListItem
    Accessible.onPressAction: {
        if (root.isEditing)
            root.deleteRequested();
    }

    swipe.right: QXDeleteButton {
        objectName: "QXBreakpointDeleteButton"
        x: root.width - width
        height: root.height
        onClicked: root.deleteRequested()
    }

    background: Rectangle {
        x: root.swipe.position * 88
        color: root.isCurrent || root.pressed ? QXTheme.pressedFill : QXTheme.secondaryBackground

        QXSeparator {
            anchors.left: parent.left
            anchors.leftMargin: QXTheme.margin
            anchors.right: parent.right
            anchors.bottom: parent.bottom
        }
    }

    Item {
        x: root.swipe.position * 88
        width: root.width
        height: root.height

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
}
