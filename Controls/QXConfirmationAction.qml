import QtQuick
import Quorvix.Controls

/// One of the choices of a confirmation dialog.
QXMenuItem {
    smallestHeight: 54
    color: QXTheme.link
    alignment: Text.AlignHCenter
    Accessible.role: Accessible.Button
}
