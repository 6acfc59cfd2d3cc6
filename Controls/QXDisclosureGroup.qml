import QtQuick
import Quorvix.Controls

/// The title of a group. A press on it opens or closes the group.
QXPressable {
    id: root

    property bool expanded: false
    property real columnMargin: QXTheme.margin

    objectName: "QXDisclosureGroup"
    implicitWidth: 320
    implicitHeight: Math.max(QXTheme.touchTarget, label.implicitHeight + 2 * QXTheme.spacing)

    Accessible.description: expanded ? qsTranslate("Quorvix", "Expanded") : qsTranslate("Quorvix", "Collapsed")

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.leftMargin: root.columnMargin - QXTheme.spacing
            anchors.rightMargin: anchors.leftMargin
            radius: QXTheme.cornerRadius
            color: root.pressed ? QXTheme.fill : "transparent"

            QXFocusRing {
                anchors.fill: parent
                visible: root.visualFocus
            }
        }
    }

    QXSectionTitle {
        id: label

        anchors.left: parent.left
        anchors.leftMargin: root.columnMargin
        anchors.right: chevron.left
        anchors.rightMargin: QXTheme.spacing
        anchors.verticalCenter: parent.verticalCenter
        text: root.text
        Accessible.ignored: true
    }

    QXIcon {
        id: chevron

        anchors.right: parent.right
        anchors.rightMargin: root.columnMargin
        anchors.verticalCenter: parent.verticalCenter
        symbol: "chevron.right"
        size: 16
        color: QXTheme.link
        rotation: root.expanded ? 90 : root.mirrored ? 180 : 0

        Behavior on rotation {
            enabled: QXTheme.animates

            NumberAnimation {
                duration: QXTheme.shortDuration
                easing.type: Easing.OutCubic
            }
        }
    }
}
