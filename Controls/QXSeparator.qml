import QtQuick
import QtQuick.Window
import Quorvix.Controls

/// The thinnest line that the screen draws evenly.
Rectangle {
    implicitHeight: Math.max(1, Math.floor(Screen.devicePixelRatio / 2)) / Screen.devicePixelRatio
    color: QXTheme.separator
}
