import QtQuick
import Quorvix.Controls
import Quorvix.Screens

/// What the floating button has of QML: the frosted glass behind its face, and what it says to assistive technologies.
Item {
    id: root

    required property QXOverlay overlay
    required property QXFloatingButton button
    /// Whether the scene graph can draw an item into a texture.
    readonly property bool canBlur: GraphicsInfo.api !== GraphicsInfo.Unknown
        && GraphicsInfo.api !== GraphicsInfo.Software && GraphicsInfo.api !== GraphicsInfo.OpenVG
        && GraphicsInfo.api !== GraphicsInfo.Null
    readonly property bool isFrosted: (backdrop.item as QXBackdrop)?.isFrosted ?? false

    onIsFrostedChanged: root.button.isFrosted = root.isFrosted

    Loader {
        id: backdrop

        width: root.button.width
        height: root.button.height
        active: root.canBlur
        visible: !root.overlay.isShowingRequestList
        opacity: root.overlay.isTranslucent ? 0.85 : 1
        sourceComponent: QXFrostedBackdrop {}
    }

    Connections {
        target: root.overlay

        function onButtonMoved() {
            (backdrop.item as QXBackdrop)?.refresh();
        }
    }

    Connections {
        target: root.button

        function onBadgeChanged() {
            root.button.Accessible.description = root.button.badgeText;
        }
    }

    Component.onCompleted: {
        root.button.Accessible.role = Accessible.Button;
        root.button.Accessible.name = root.button.text;
        root.button.Accessible.description = root.button.badgeText;
        root.button.Accessible.ignored = Qt.binding(() => root.overlay.isCovered && !root.overlay.isFramed);
        root.button.Accessible.pressAction.connect(root.button.clicked);
    }
}
