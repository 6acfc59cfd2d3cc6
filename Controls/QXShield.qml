import QtQuick

/// While enabled, the shield stops all pointer events above the items beneath it.
MouseArea {
    id: root

    acceptedButtons: Qt.AllButtons
    hoverEnabled: enabled
    cursorShape: enabled ? Qt.ArrowCursor : undefined
    onWheel: wheel => wheel.accepted = true

    MultiPointTouchArea {
        anchors.fill: parent
        enabled: root.enabled
        mouseEnabled: false
    }
}
