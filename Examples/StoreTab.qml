import QtQuick
import QtQuick.Controls.Basic
import QuorvixDemo

/// A tab with its icon, its label, and an optional count.
TabButton {
    id: root

    required property string path
    property int count: 0

    readonly property color shade: root.checked ? StoreTheme.accent : StoreTheme.faint

    implicitHeight: 52

    Accessible.role: Accessible.PageTab
    Accessible.name: root.text

    background: Item {}
    contentItem: Item {
        StoreIcon {
            anchors.horizontalCenter: parent.horizontalCenter
            color: root.shade
            path: root.path
        }
        Text {
            anchors { horizontalCenter: parent.horizontalCenter; top: parent.top; topMargin: 27 }
            text: root.text
            color: root.shade
            font.pixelSize: StoreTheme.caption
            font.weight: root.checked ? Font.DemiBold : Font.Medium
            Accessible.ignored: true
        }
        Label {
            anchors { left: parent.horizontalCenter; top: parent.top; leftMargin: 4; topMargin: -6 }
            visible: root.count > 0
            width: Math.max(18, implicitWidth)
            height: 18
            leftPadding: 5
            rightPadding: 5
            text: root.count
            color: StoreTheme.accentInk
            font.pixelSize: 11
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            background: Rectangle {
                radius: 9
                color: StoreTheme.accent
            }
            Accessible.ignored: true
        }
    }
}
