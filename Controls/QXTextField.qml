import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A text field of one line with a rounded border.
T.TextField {
    id: root

    readonly property bool isMirrored: QXTheme.isMirrored

    implicitWidth: 200
    implicitHeight: Math.max(QXTheme.touchTarget, contentHeight + 2 * QXTheme.spacing)
    leftPadding: 12
    rightPadding: 12
    // Without it, the text that is typed decides: a number would be on the left of a form that is mirrored.
    horizontalAlignment: TextInput.AlignLeft
    verticalAlignment: TextInput.AlignVCenter
    font: QXTheme.body
    color: QXTheme.label
    placeholderTextColor: QXTheme.secondaryLabel
    selectionColor: QXTheme.selection
    selectedTextColor: QXTheme.onColor
    selectByMouse: true

    Accessible.editable: !readOnly

    background: Rectangle {
        radius: QXTheme.cornerRadius
        color: QXTheme.elevatedBackground
        border.width: root.activeFocus ? 2 : 1
        border.color: root.activeFocus ? QXTheme.blue : QXTheme.outline
    }

    Timer {
        id: turned

        interval: 0
        onTriggered: root.alignAnew()
    }

    // The text of a field that is open while the layout turns round keeps its place until it is aligned anew.
    onIsMirroredChanged: turned.start()

    function alignAnew() {
        root.horizontalAlignment = TextInput.AlignRight;
        root.horizontalAlignment = TextInput.AlignLeft;
    }
}
