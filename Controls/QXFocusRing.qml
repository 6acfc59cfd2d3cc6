import QtQuick
import Quorvix.Controls

/// Tells which control has the keyboard.
Rectangle {
    radius: QXTheme.cornerRadius
    color: "transparent"
    border.width: 2
    border.color: QXTheme.blue
}
