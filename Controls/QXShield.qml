import QtQuick

/// While enabled, nothing that happens over it reaches what lies beneath.
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
