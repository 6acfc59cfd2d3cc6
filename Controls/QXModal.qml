import QtQuick
import QtQuick.Window
import Quorvix.Controls

/// A view over a dimmed screen. It has the keyboard focus until it is dismissed, and then returns it.
QXScreen {
    id: root

    required property QXPresentationLayer presentationLayer
    property bool presented: false
    /// How far the view has come, from 0 to 1.
    readonly property alias progress: motion.position
    readonly property alias glide: motion
    /// Whether a view that the user wants to close leaves before dismissRequested() is emitted, so that it can still be
    /// caught on its way and turned round.
    property bool leavesFirst: false
    property bool dismissesOnOutsideTap: true
    property color scrim: QXTheme.scrim
    default property alias content: holder.data

    readonly property bool isTopmost: presentationLayer.topmost === root

    property Item previousFocus: null
    /// When the view was shown, in milliseconds.
    property real appearedAt: 0

    /// Emitted when the user wants to close the view.
    signal dismissRequested

    parent: presentationLayer
    anchors.fill: parent
    z: presentationLayer.presented.indexOf(root)
    visible: false
    // The buttons of a view that leaves first do not fade while it leaves.
    enabled: (isTopmost || leavesFirst && !motion.isOpen) && presented

    Accessible.ignored: !root.isTopmost

    onLeaveRequested: root.leave()

    QXFocusFence {}

    Rectangle {
        anchors.fill: parent
        color: root.scrim
        opacity: root.progress
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        enabled: root.isTopmost
        hoverEnabled: true
        onClicked: {
            // The second tap of a double tap must not dismiss a view that the first tap opened.
            const isSecondTap = Date.now() - root.appearedAt < Application.styleHints.mouseDoubleClickInterval;
            if (root.dismissesOnOutsideTap && root.progress === 1 && (QXTheme.animates || !isSecondTap))
                root.leave();
        }
        onWheel: wheel => wheel.accepted = true
    }

    QXCurtain {
        id: holder

        anchors.fill: parent
        isCovered: !root.isTopmost
    }

    QXGlide {
        id: motion

        objectName: "QXModalGlide"
        onIsOpenChanged: {
            if (isOpen)
                root.takeFocus();
            else
                root.returnFocus();
        }
        onSettled: {
            if (!isOpen)
                root.end();
        }
    }

    onPresentedChanged: {
        if (presented)
            appear();
        else
            motion.isOpen = false;
    }
    Component.onCompleted: {
        if (presented && !visible)
            appear();
    }
    Component.onDestruction: presentationLayer?.dismiss(root)

    /// Shows the view, also when it is leaving.
    function appear() {
        root.appearedAt = Date.now();
        motion.isOpen = true;
    }

    /// Called when the user wants to close the view.
    function leave() {
        if (root.leavesFirst)
            motion.isOpen = false;
        else
            root.dismissRequested();
    }

    function end() {
        if (root.presented)
            root.dismissRequested();
        if (root.presented)
            root.appear(); // its owner keeps it
        else
            root.visible = false;
    }

    function takeFocus() {
        root.previousFocus = root.Window.activeFocusItem;
        root.presentationLayer.present(root);
        // Not before it is enabled, because buttons fade in that are enabled while they are visible.
        root.visible = true;
        root.forceActiveFocus();
    }

    function returnFocus() {
        const hadKeyboard = root.activeFocus;
        root.presentationLayer.dismiss(root);
        // A view above all screens may have the keyboard focus now, and must keep it.
        if (root.previousFocus && hadKeyboard)
            root.previousFocus.forceActiveFocus();
        root.previousFocus = null;
    }
}
