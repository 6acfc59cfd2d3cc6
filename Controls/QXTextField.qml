import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A text field of one line with a rounded border.
T.TextField {
    id: root

    implicitWidth: 200
    implicitHeight: Math.max(QXTheme.touchTarget, contentHeight + 2 * QXTheme.spacing)
    leftPadding: 12
    rightPadding: 12
    verticalAlignment: TextInput.AlignVCenter
    font: QXTheme.body
    color: QXTheme.label
    placeholderTextColor: QXTheme.secondaryLabel
    selectionColor: QXTheme.selection
    selectedTextColor: QXTheme.onColor
    selectByMouse: true

    background: Rectangle {
        radius: QXTheme.cornerRadius
        color: QXTheme.elevatedBackground
        border.width: root.activeFocus ? 2 : 1
        border.color: root.activeFocus ? QXTheme.blue : QXTheme.outline
    }
}
