import QtQuick
import QtQuick.Window
import Quorvix.Controls

/// A view over a dimmed screen. It has the keyboard focus until it is dismissed, and then returns it.
QXScreen {
    id: root

    required property QXPresentationLayer presentationLayer
    property bool presented: false
    /// The progress of the animation that shows the view, from 0 to 1.
    property real progress: presented ? 1 : 0
    property bool dismissesOnOutsideTap: true
    property color scrim: QXTheme.scrim
    default property alias content: holder.data

    property Item previousFocus: null

    /// Emitted when the user wants to close the view.
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
            // The second tap of a double tap must not dismiss a view that the first tap opened.
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
        // A view above all screens may have the keyboard focus now, and must keep it.
        if (root.previousFocus && hadKeyboard)
            root.previousFocus.forceActiveFocus();
        root.previousFocus = null;
        // A view that is dismissed before its animation starts has no closing animation to wait for.
        if (root.progress === 0)
            root.visible = false;
    }
}
