import QtQuick
import QtQuick.Controls.Basic
import QuorvixDemo

/// A text field of one line.
TextField {
    id: root

    property string label

    implicitHeight: StoreTheme.touch + 4
    leftPadding: StoreTheme.pad
    rightPadding: StoreTheme.pad
    color: StoreTheme.ink
    placeholderText: root.label
    placeholderTextColor: StoreTheme.faint
    selectionColor: StoreTheme.accent
    selectedTextColor: StoreTheme.accentInk
    font.pixelSize: StoreTheme.body
    selectByMouse: true

    Accessible.role: Accessible.EditableText
    Accessible.name: root.label

    background: Rectangle {
        radius: height / 2
        color: StoreTheme.field
        border.width: root.activeFocus ? 2 : 0
        border.color: StoreTheme.accent
    }
}
