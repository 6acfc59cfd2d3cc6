import QtQuick
import Quorvix.Controls

/// The shared item: its symbol, its title, and its name and size.
Item {
    id: root

    required property string symbol
    required property string title
    required property string subtitle

    implicitHeight: Math.max(56, lines.implicitHeight)
    Accessible.role: Accessible.Heading
    Accessible.name: name.text + ", " + subtitle

    Rectangle {
        id: tile

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        width: 56
        height: 56
        radius: QXTheme.cornerRadius
        color: QXTheme.elevatedBackground

        QXIcon {
            anchors.centerIn: parent
            symbol: root.symbol
            size: 30
            color: QXTheme.blue
        }
    }

    Column {
        id: lines

        anchors.left: tile.right
        anchors.leftMargin: 12
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        QXLabel {
            id: name

            width: parent.width
            content: root.title
            font: QXTheme.headline
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            Accessible.ignored: true
        }

        QXText {
            width: parent.width
            text: root.subtitle
            font: QXTheme.footnote
            color: QXTheme.secondaryLabel
            // Both the beginning of a name and the size stay visible.
            elide: Text.ElideMiddle
            Accessible.ignored: true
        }
    }
}
