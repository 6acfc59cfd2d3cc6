pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix.Screens

/// The request list while it is open, below the floating button. A framed window has a view of its own, without the
/// button.
FocusScope {
    id: root

    required property QXOverlay overlay
    required property QXSafeArea safeArea
    /// Whether this is the view of the framed window.
    required property bool isFramed
    /// The progress of the opening list, from 0 (closed) to 1 (open).
    readonly property alias progress: slide.position
    /// The parent of the button.
    readonly property Item buttonPlace: place
    readonly property QXFloatingButton button: place.children[0] as QXFloatingButton
    readonly property bool showsList: root.overlay.isShowingRequestList && root.overlay.isFramed === root.isFramed

    LayoutMirroring.enabled: QXTheme.isMirrored
    LayoutMirroring.childrenInherit: true

    QXFocusFence {
        enabled: root.showsList
    }

    QXShield {
        anchors.fill: parent
        enabled: root.showsList
    }

    QXCurtain {
        anchors.fill: parent
        isCovered: root.overlay.isCovered && root.overlay.isFramed === root.isFramed

        // A Repeater makes a new list screen each time the list opens.
        Repeater {
            model: root.showsList ? 1 : 0

            delegate: QXRequestListView {
                // Hidden before it is deleted, so that a press on one of its items ends while its models exist.
                visible: root.overlay.presentsRequestList || root.progress > 0
                y: root.height * (1 - root.progress)
                width: root.width
                height: root.height
                focus: true
                presentationLayer: presentations
                onClose: root.overlay.dismissRequestList()
                Component.onCompleted: forceActiveFocus()
            }
        }

        // Below the button, which turns the list round, too.
        QXCatcher {
            anchors.fill: parent
            glide: slide
            isVertical: true
        }

        QXCurtain {
            id: place

            anchors.fill: parent
            enabled: !presentations.isPresenting
            // The user sees what moves beneath the button.
            opacity: faint.running ? 0.15 : 1

            Behavior on opacity {
                enabled: QXTheme.animates

                NumberAnimation {
                    duration: QXTheme.duration / 2
                }
            }
        }

        QXPresentationLayer {
            id: presentations

            anchors.fill: parent
            safeArea: root.safeArea
            visible: root.overlay.presentsRequestList
        }
    }

    // Runs while a page is scrolled, and a little longer.
    Timer {
        id: faint

        interval: 500
    }

    Connections {
        target: root.safeArea

        function onScrolled() {
            faint.restart();
        }
    }

    Connections {
        target: root.button

        function onApproached() {
            faint.stop();
        }
    }

    QXGlide {
        id: slide

        animates: root.overlay.isTranslucent && QXTheme.animates
        extent: Math.max(1, root.height)
        onIsOpenChanged: root.overlay.turnRequestList(isOpen)
        onSettled: root.overlay.requestListDismissed()
    }

    // The host may have deleted an earlier view while the list was open.
    Component.onCompleted: {
        slide.jump(root.overlay.presentsRequestList);
        root.overlay.requestListDismissed();
    }

    Connections {
        target: root.overlay

        function onPresentationChanged() {
            if (!root.showsList)
                return;
            QXTheme.appearance.refresh();
            if (!root.isFramed)
                slide.isOpen = root.overlay.presentsRequestList;
        }
    }
}
