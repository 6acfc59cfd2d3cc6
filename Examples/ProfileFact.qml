import QtQuick
import QuorvixDemo

/// A name and a value on one line.
Item {
    id: root

    required property string name
    required property string value

    implicitHeight: label.implicitHeight

    Text {
        id: label

        text: root.name
        color: StoreTheme.faint
        font.pixelSize: StoreTheme.small + 1
    }
    Text {
        anchors { left: label.right; right: parent.right; leftMargin: StoreTheme.space }
        text: root.value
        color: StoreTheme.ink
        font.pixelSize: StoreTheme.small + 1
        font.weight: Font.Medium
        horizontalAlignment: Text.AlignRight
        elide: Text.ElideRight
    }
}
