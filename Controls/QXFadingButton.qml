import QtQuick
import Quorvix.Controls

/// A button that fades while it is pressed or disabled.
QXPressable {
    id: root

    property real pressedOpacity: 0.4

    opacity: enabled ? (pressed ? pressedOpacity : 1) : 0.35

    background: QXFocusRing {
        visible: root.visualFocus
    }

    Behavior on opacity {
        enabled: QXTheme.animates && root.visible

        NumberAnimation {
            duration: QXTheme.shortDuration
        }
    }
}
