import QtQuick
import Quorvix

/// Tells which control has the keyboard.
Rectangle {
    radius: QXTheme.cornerRadius
    color: "transparent"
    border.width: 2
    border.color: QXTheme.blue
}
