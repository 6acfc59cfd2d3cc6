import QtQuick
import QtQuick.Window
import Quorvix.Controls

/// Something over a dimmed screen that has the keyboard until it is dismissed, and gives it back then.
QXScreen {
    id: root

    required property QXPresentationLayer presentationLayer
    property bool presented: false
    /// How far it has come in, from 0 to 1.
    property real progress: presented ? 1 : 0
    property bool dismissesOnOutsideTap: true
    property color scrim: QXTheme.scrim
    default property alias content: holder.data

    property Item previousFocus: null

    /// The user wants it gone.
    signal dismissRequested

    parent: presentationLayer
    anchors.fill: parent
    z: presentationLayer.presented.indexOf(root)
    visible: false
    enabled: presented && presentationLayer.topmost === root

    onLeaveRequested: root.dismissRequested()

    QXFocusFence {}

    Rectangle {
        anchors.fill: parent
        color: root.scrim
        opacity: root.progress
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        hoverEnabled: true
        onClicked: {
            // The second tap of two in a row was not meant for what came with the first.
            if (root.dismissesOnOutsideTap && root.progress === 1)
                root.dismissRequested();
        }
        onWheel: wheel => wheel.accepted = true
    }

    Item {
        id: holder

        anchors.fill: parent
    }

    Behavior on progress {
        NumberAnimation {
            duration: QXTheme.duration
            easing.type: Easing.OutCubic
        }
    }

    onProgressChanged: {
        if (progress === 0 && !presented)
            visible = false;
    }
    onPresentedChanged: {
        if (presented)
            appear();
        else
            disappear();
    }
    Component.onCompleted: {
        if (presented && !visible)
            appear();
    }
    Component.onDestruction: presentationLayer?.dismiss(root)

    function appear() {
        root.previousFocus = root.Window.activeFocusItem;
        root.visible = true;
        root.presentationLayer.present(root);
        root.forceActiveFocus();
    }

    function disappear() {
        const hadKeyboard = root.activeFocus;
        root.presentationLayer.dismiss(root);
        // Something above all screens may have it by now.
        if (root.previousFocus && hadKeyboard)
            root.previousFocus.forceActiveFocus();
        root.previousFocus = null;
        // Dismissed before it has begun to come in, there is no way out to wait for.
        if (root.progress === 0)
            root.visible = false;
    }
}
