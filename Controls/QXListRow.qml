import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A row of a list. The list has the keyboard and acts for its current row, so a row takes no keys.
T.AbstractButton {
    id: root

    /// Whether the keyboard would act on this row.
    property bool isCurrent: false
    property real columnMargin: QXTheme.margin
    /// Tells the row from others; lies beneath all of it.
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
