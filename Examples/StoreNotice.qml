import QtQuick
import QuorvixDemo

/// A short message that disappears by itself.
Rectangle {
    id: root

    /// How long a message is shown, in milliseconds.
    property int duration: 1800

    function show(text: string): void {
        label.text = text;
        root.opacity = 1;
        timer.restart();
    }

    function hide(): void {
        root.opacity = 0;
    }

    objectName: "storeNotice"
    width: label.implicitWidth + 2 * StoreTheme.pad
    height: 44
    radius: 22
    color: StoreTheme.ink
    opacity: 0
    visible: root.opacity > 0

    Accessible.role: Accessible.AlertMessage
    Accessible.name: label.text

    Behavior on opacity { NumberAnimation { duration: 160 } }

    Text {
        id: label

        anchors.centerIn: parent
        color: StoreTheme.page
        font.pixelSize: StoreTheme.small
        font.weight: Font.Medium
        Accessible.ignored: true
    }
    Timer {
        id: timer

        interval: root.duration
        onTriggered: root.opacity = 0
    }
}
