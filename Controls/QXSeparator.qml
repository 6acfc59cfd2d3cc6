import QtQuick
import QtQuick.Window
import Quorvix.Controls

/// As thin a line as the screen can draw well.
Rectangle {
    implicitHeight: Math.max(1, Math.floor(Screen.devicePixelRatio / 2)) / Screen.devicePixelRatio
    color: QXTheme.separator
}
