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
    property real progress: 0
    /// The parent of the button.
    readonly property Item buttonPlace: place
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

    Item {
        id: place

        anchors.fill: parent
        enabled: !presentations.isPresenting
    }

    QXPresentationLayer {
        id: presentations

        anchors.fill: parent
        safeArea: root.safeArea
        visible: root.overlay.presentsRequestList
    }

    NumberAnimation {
        id: slide

        target: root
        property: "progress"
        duration: root.overlay.isTranslucent ? QXTheme.duration : 0
        easing.type: Easing.OutCubic
        onFinished: root.overlay.requestListDismissed()
    }

    // The host may have deleted an earlier view while the list was open.
    Component.onCompleted: {
        root.progress = root.overlay.presentsRequestList ? 1 : 0;
        root.overlay.requestListDismissed();
    }

    Connections {
        target: root.overlay

        function onPresentationChanged() {
            slide.to = root.overlay.presentsRequestList ? 1 : 0;
            if (root.showsList && !root.isFramed)
                slide.restart();
        }
    }
}
