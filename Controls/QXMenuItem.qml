import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// One choice in a menu or a dialog, which closes before `triggered` is emitted.
Item {
    id: root

    property string text
    property font font: QXTheme.body
    property string symbol
    property real smallestHeight: QXTheme.touchTarget
    property color color: QXTheme.label
    property color fill: "transparent"
    property real radius: 0
    property int alignment: Text.AlignLeft
    /// Whether this is the last item, which has no line below it.
    property bool isLast: false
    /// What assistive technologies call the item.
    property int role: Accessible.MenuItem

    /// Emitted by a press. The menu closes.
    signal clicked
    /// Emitted when the user chooses the item.
    signal triggered

    width: parent?.width ?? implicitWidth
    implicitWidth: QXTheme.margin * 2 + label.implicitWidth + (symbol ? icon.width + QXTheme.margin : 0)
    implicitHeight: Math.max(smallestHeight, label.implicitHeight + 2 * QXTheme.spacing)
    activeFocusOnTab: true

    Accessible.role: root.role
    Accessible.name: root.text
    Accessible.onPressAction: root.press()

    Keys.onSpacePressed: root.press()
    Keys.onReturnPressed: root.press()
    Keys.onEnterPressed: root.press()

    QXFocusReason {
        id: focusReason

        item: root
    }

    // Qt 6.4 tells that a button is one, whatever its role; so this one tells nothing.
    T.AbstractButton {
        id: button

        anchors.fill: parent
        focusPolicy: Qt.NoFocus
        hoverEnabled: true
        Accessible.ignored: true
        onClicked: root.clicked()

        background: Rectangle {
            radius: root.radius
            color: root.fill

            Rectangle {
                anchors.fill: parent
                anchors.margins: 4
                radius: QXTheme.cornerRadius - 3
                color: button.pressed ? QXTheme.pressedFill : QXTheme.fill
                visible: button.pressed || button.hovered || focusReason.isVisual

                QXFocusRing {
                    anchors.fill: parent
                    radius: parent.radius
                    visible: focusReason.isVisual
                }
            }

            QXSeparator {
                anchors.bottom: parent.bottom
                width: parent.width
                visible: !root.isLast
            }
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

    function press() {
        if (root.enabled)
            root.clicked();
    }
}
