import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A row of a list. The list has the keyboard focus and handles the keys of its current row.
T.AbstractButton {
    id: root

    /// Whether this row is the current one, which the keys act on.
    property bool isCurrent: false
    property real columnMargin: QXTheme.margin
    /// A background colour that distinguishes the row from others.
    property color tint: "transparent"
    property real tintOpacity: 1

    readonly property real rowPadding: 6

    focusPolicy: Qt.NoFocus

    Accessible.role: Accessible.ListItem

    background: Item {
        Rectangle {
            anchors.fill: parent
            color: root.tint
            opacity: root.tintOpacity
        }

        Rectangle {
            anchors.fill: parent
            visible: root.pressed || root.isCurrent
            color: QXTheme.pressedFill
        }

        QXFocusRing {
            anchors.fill: parent
            anchors.margins: 2
            visible: root.isCurrent
        }
    }
}
