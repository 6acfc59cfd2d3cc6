import QtQuick
import Quorvix.Controls

/// The way of a view between away and open, with the clock of the window's animations.
QXSpring {
    id: root

    // Longer than any movement takes.
    readonly property NumberAnimation clock: NumberAnimation {
        target: root
        property: "time"
        from: 0
        to: 4
        duration: 4000
        running: root.isRunning
    }

    animates: QXTheme.animates
}
