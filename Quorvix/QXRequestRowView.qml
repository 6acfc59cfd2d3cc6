import QtQuick
import Quorvix.Controls

/// One exchange in the request list.
QXListRow {
    id: root

    required property string title
    required property string statusText
    required property int statusColor
    required property bool hasError
    required property int tintColor
    required tintOpacity

    objectName: "QXRequestRow"
    implicitHeight: Math.max(QXTheme.touchTarget, lines.implicitHeight + 2 * rowPadding)
    tint: QXTheme.systemColor(tintColor)

    Accessible.name: title + ", " + statusText

    Rectangle {
        id: swatch

        anchors.left: parent.left
        anchors.leftMargin: root.columnMargin
        anchors.verticalCenter: parent.verticalCenter
        width: 8
        height: 8
        radius: 4
        color: QXTheme.systemColor(root.statusColor)
    }

    Column {
        id: lines

        anchors.left: swatch.right
        anchors.leftMargin: 12
        anchors.right: chevron.left
        anchors.rightMargin: QXTheme.spacing
        anchors.verticalCenter: parent.verticalCenter
        spacing: 1

        QXText {
            width: parent.width
            text: root.title
            elide: Text.ElideMiddle
            Accessible.ignored: true
        }

        QXText {
            width: parent.width
            text: root.statusText
            font: QXTheme.caption
            color: root.hasError ? QXTheme.redText : QXTheme.secondaryLabel
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }

    QXIcon {
        id: chevron

        anchors.right: parent.right
        anchors.rightMargin: root.columnMargin - 4
        anchors.verticalCenter: parent.verticalCenter
        symbol: "chevron.right"
        size: 16
        color: QXTheme.gray
        mirror: root.mirrored
    }

    QXSeparator {
        anchors.left: lines.left
        anchors.right: parent.right
        anchors.rightMargin: root.edge
        anchors.bottom: parent.bottom
    }
}
