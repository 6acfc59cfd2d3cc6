import QtQuick
import QtQuick.Templates as T
import Quorvix

/// Screens in one column, each pushed over the one before; the one on top has the keyboard.
T.StackView {
    id: root

    readonly property real direction: mirrored ? -1 : 1

    clip: true

    pushEnter: Transition {
        NumberAnimation {
            property: "x"
            from: root.width * root.direction
            to: 0
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }
    pushExit: Transition {
        NumberAnimation {
            property: "x"
            from: 0
            to: -root.width * 0.3 * root.direction
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }
    popEnter: Transition {
        NumberAnimation {
            property: "x"
            from: -root.width * 0.3 * root.direction
            to: 0
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }
    popExit: Transition {
        NumberAnimation {
            property: "x"
            from: 0
            to: root.width * root.direction
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }

    onCurrentItemChanged: {
        if (currentItem && activeFocus)
            currentItem.forceActiveFocus();
    }
}
