import QtQuick
import QtQuick.Controls.Basic
import QuorvixDemo

/// A wide button: filled, or tinted for less important actions.
AbstractButton {
    id: root

    property bool prominent: true

    implicitHeight: StoreTheme.touch + 4
    implicitWidth: implicitContentWidth + 2 * StoreTheme.pad
    opacity: root.enabled ? 1 : 0.5

    Accessible.role: Accessible.Button
    Accessible.name: root.text

    background: Rectangle {
        radius: height / 2
        color: root.prominent ? StoreTheme.accent : StoreTheme.wash
        opacity: root.down ? 0.8 : 1
        border.width: root.visualFocus ? 2 : 0
        border.color: StoreTheme.ink
    }
    contentItem: Text {
        text: root.text
        color: root.prominent ? StoreTheme.accentInk : StoreTheme.accent
        font.pixelSize: StoreTheme.body
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
