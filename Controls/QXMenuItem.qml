import QtQuick
import Quorvix.Controls

/// One choice in a menu or a dialog, which closes before `triggered` is emitted.
QXPressable {
    id: root

    property string symbol
    property real smallestHeight: QXTheme.touchTarget
    property color color: QXTheme.label
    property color fill: "transparent"
    property real radius: 0
    property int alignment: Text.AlignLeft
    /// Whether this is the last item, which has no line below it.
    property bool isLast: false

    /// Emitted when the user chooses the item.
    signal triggered

    width: parent?.width ?? implicitWidth
    implicitWidth: QXTheme.margin * 2 + label.implicitWidth + (symbol ? icon.width + QXTheme.margin : 0)
    implicitHeight: Math.max(smallestHeight, label.implicitHeight + 2 * QXTheme.spacing)
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    font: QXTheme.body

    Accessible.role: Accessible.MenuItem

    background: Rectangle {
        radius: root.radius
        color: root.fill

        Rectangle {
            anchors.fill: parent
            anchors.margins: 4
            radius: QXTheme.cornerRadius - 3
            color: root.pressed ? QXTheme.pressedFill : QXTheme.fill
            visible: root.pressed || root.hovered || root.visualFocus

            QXFocusRing {
                anchors.fill: parent
                radius: parent.radius
                visible: root.visualFocus
            }
        }

        QXSeparator {
            anchors.bottom: parent.bottom
            width: parent.width
            visible: !root.isLast
        }
    }

    QXText {
        id: label

        anchors.left: parent.left
        anchors.leftMargin: QXTheme.margin
        anchors.right: icon.visible ? icon.left : parent.right
        anchors.rightMargin: icon.visible ? QXTheme.spacing : QXTheme.margin
        anchors.verticalCenter: parent.verticalCenter
        text: root.text
        font: root.font
        color: root.color
        wrapMode: Text.Wrap
        horizontalAlignment: root.alignment
        Accessible.ignored: true
    }

    QXIcon {
        id: icon

        anchors.right: parent.right
        anchors.rightMargin: QXTheme.margin
        anchors.verticalCenter: parent.verticalCenter
        visible: root.symbol.length > 0
        symbol: root.symbol || "doc.on.doc"
        color: root.color
        size: Math.round(20 * Math.max(1, Math.min(QXTheme.scale, 1.5)))
    }
}
