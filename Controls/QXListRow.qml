import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A row of a list. The list has the keyboard focus and handles the keys of its current row.
T.ItemDelegate {
    id: root

    /// Whether this row is the current one, which the keys act on.
    property bool isCurrent: false
    /// A background colour that distinguishes the row from others.
    property color tint: "transparent"
    property real tintOpacity: 1

    readonly property real rowPadding: 6
    /// The margin of the row in its list: none in a narrow window, where it touches both edges.
    readonly property real edge: QXTheme.columnEdge(width)
    /// The margin of what the row shows.
    readonly property real columnMargin: Math.max(QXTheme.margin, edge + 12)

    focusPolicy: Qt.NoFocus

    // Qt 6.4 tells the role of the control itself, whatever is written here.
    Accessible.role: Accessible.ListItem
    Accessible.onPressAction: root.clicked()
    // The list has the keyboard focus; a screen reader follows its current row.
    Accessible.focusable: true
    Accessible.focused: root.isCurrent
    Accessible.selectable: true
    Accessible.selected: root.isCurrent

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.leftMargin: root.edge
            anchors.rightMargin: root.edge
            color: root.tint
            opacity: root.tintOpacity
        }

        Rectangle {
            anchors.fill: parent
            anchors.leftMargin: root.edge
            anchors.rightMargin: root.edge
            visible: root.pressed || root.isCurrent
            color: QXTheme.pressedFill
        }

        QXFocusRing {
            anchors.fill: parent
            anchors.margins: 2
            anchors.leftMargin: root.edge + 2
            anchors.rightMargin: root.edge + 2
            visible: root.isCurrent
        }
    }
}
