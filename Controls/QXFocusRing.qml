import QtQuick
import Quorvix.Controls

/// Marks the control that has the keyboard focus.
Rectangle {
    radius: QXTheme.cornerRadius
    color: "transparent"
    border.width: 2
    border.color: QXTheme.blue
}
