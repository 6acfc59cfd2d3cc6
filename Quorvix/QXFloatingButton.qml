import QtQuick
import Quorvix.Controls
import Quorvix.Screens

/// The round button over the host's window: a tap opens or closes the request list, a drag moves it.
QXPressable {
    id: root

    required property QXOverlay overlay
    /// Whether the scene graph can draw an item into a texture.
    readonly property bool canBlur: GraphicsInfo.api !== GraphicsInfo.Unknown
        && GraphicsInfo.api !== GraphicsInfo.Software && GraphicsInfo.api !== GraphicsInfo.OpenVG
        && GraphicsInfo.api !== GraphicsInfo.Null

    /// Whether the mask of our own window cuts the button out, because nothing is visible below it.
    readonly property bool isCutOut: !overlay.isTranslucent && (overlay.isFramed || !overlay.isShowingRequestList)

    objectName: "QXFloatingButton"
    width: 52
    height: 52
    x: overlay.buttonCenter.x - width / 2
    y: overlay.buttonCenter.y - height / 2
    focusPolicy: Qt.TabFocus
    text: qsTranslate("Quorvix", "Network Trace")

    Accessible.description: overlay.badgeText

    Item {
        anchors.fill: parent
        scale: root.pressed && root.overlay.isTranslucent ? 0.94 : 1

        // The mask cuts these to an edge around the button and the badge.
        Rectangle {
            anchors.fill: parent
            anchors.margins: -1
            visible: root.isCutOut
            color: QXTheme.outline
        }

        Rectangle {
            anchors.fill: badge
            visible: badge.visible && root.isCutOut
            color: badge.color
        }

        QXIcon {
            anchors.centerIn: parent
            anchors.verticalCenterOffset: 6
            visible: !root.isCutOut
            symbol: "button.shadow"
            size: 112
            color: QXTheme.shadow
        }

        Item {
            objectName: "QXBlurView"
            anchors.fill: parent
            opacity: root.overlay.isTranslucent ? 0.85 : 1

            Loader {
                id: backdrop

                readonly property bool isFrosted: (item as QXBackdrop)?.isFrosted ?? false

                anchors.fill: parent
                active: root.canBlur
                visible: !root.overlay.isShowingRequestList
                sourceComponent: QXFrostedBackdrop {}

                Connections {
                    target: root.overlay

                    function onButtonMoved() {
                        (backdrop.item as QXBackdrop)?.refresh();
                    }
                }
            }

            Rectangle {
                anchors.fill: parent
                radius: width / 2
                color: Qt.alpha(QXTheme.material, backdrop.isFrosted ? 0.6 : 1)
                border.width: 1
                border.color: QXTheme.materialEdge
            }

            Rectangle {
                anchors.fill: parent
                radius: width / 2
                visible: root.pressed
                color: QXTheme.pressedFill
            }
        }

        QXIcon {
            anchors.centerIn: parent
            symbol: "antenna.radiowaves.left.and.right"
            size: 22
        }

        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 7
            spacing: 3

            Repeater {
                model: 3

                Rectangle {
                    width: 3
                    height: 3
                    radius: 1.5
                    color: QXTheme.label
                    opacity: 0.5
                }
            }
        }

        QXCountBadge {
            id: badge

            anchors.top: parent.top
            anchors.topMargin: -4
            anchors.right: parent.right
            anchors.rightMargin: -4
            text: root.overlay.badgeText
            onXChanged: root.overlay.badgeFrame = Qt.rect(x, y, width, height)
        }

        QXFocusRing {
            anchors.fill: parent
            anchors.margins: -3
            radius: width / 2
            visible: root.visualFocus
        }

        Behavior on scale {
            NumberAnimation {
                duration: 120
            }
        }
    }

    onClicked: overlay.handleFloatingButtonTap()

    DragHandler {
        property vector2d previousTranslation

        target: null
        // Takes the grab from the button, so that a drag does not count as a tap.
        grabPermissions: PointerHandler.CanTakeOverFromAnything
        onActiveTranslationChanged: {
            if (!active)
                return;
            const step = activeTranslation.minus(previousTranslation);
            previousTranslation = activeTranslation;
            root.overlay.handleButtonPan(Qt.point(step.x, step.y));
        }
        onActiveChanged: {
            if (!active)
                root.overlay.handleButtonPanEnd();
            previousTranslation = Qt.vector2d(0, 0);
        }
    }
}
