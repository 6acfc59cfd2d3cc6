import QtQuick
import Quorvix.Controls

/// One of the choices of a confirmation dialog.
QXMenuItem {
    id: root

    // All choices fit in a phone's window that is turned.
    smallestHeight: root.Window.height < 480 ? QXTheme.touchTarget : 54
    color: QXTheme.link
    alignment: Text.AlignHCenter
    role: Accessible.Button
}
