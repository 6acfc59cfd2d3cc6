import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A switch with its name before it.
T.Switch {
    id: root

    property color tint: QXTheme.blue

    implicitWidth: Math.max(200, implicitContentWidth + indicator.width + spacing + leftPadding + rightPadding)
    implicitHeight: Math.max(QXTheme.touchTarget, implicitContentHeight + topPadding + bottomPadding)
    verticalPadding: QXTheme.spacing
    spacing: QXTheme.spacing
    focusPolicy: Qt.StrongFocus
    font: QXTheme.subheadline

    Accessible.name: text
    Accessible.role: Accessible.CheckBox
    // Qt changes the look only, and tells nobody.
    Accessible.onPressAction: root.press()
    Accessible.onToggleAction: root.press()

    Keys.onReturnPressed: root.press()
    Keys.onEnterPressed: root.press()

    contentItem: QXText {
        leftPadding: root.mirrored ? root.indicator.width + root.spacing : 0
        rightPadding: root.mirrored ? 0 : root.indicator.width + root.spacing
        text: root.text
        font: root.font
        wrapMode: Text.Wrap
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }

    indicator: Rectangle {
        x: root.mirrored ? root.leftPadding : root.width - width - root.rightPadding
        y: (root.height - height) / 2
        implicitWidth: 51
        implicitHeight: 31
        radius: height / 2
        color: root.visualPosition === (root.mirrored ? 1 : 0) ? QXTheme.outline : root.tint
        opacity: root.enabled ? 1 : 0.5

        Rectangle {
            x: 2 + root.visualPosition * (parent.width - width - 4)
            y: 2
            width: 27
            height: 27
            radius: height / 2
            color: QXTheme.onColor

            Behavior on x {
                enabled: QXTheme.animates && !root.down

                NumberAnimation {
                    duration: QXTheme.shortDuration
                    easing.type: Easing.OutCubic
                }
            }
        }

        Behavior on color {
            enabled: QXTheme.animates

            ColorAnimation {
                duration: QXTheme.shortDuration
            }
        }
    }

    background: QXFocusRing {
        visible: root.visualFocus
    }

    function press() {
        root.toggle();
        root.toggled();
    }
}
