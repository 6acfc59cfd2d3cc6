pragma Singleton

import QtQuick

/// The colours, sizes and fonts of the store, light and dark.
QtObject {
    id: root

    readonly property SystemPalette system: SystemPalette {}
    readonly property bool dark: root.system.window.hslLightness < 0.5

    readonly property color page: root.dark ? "#151311" : "#FBF8F3"
    readonly property color card: root.dark ? "#221F1B" : "#FFFFFF"
    readonly property color field: root.dark ? "#2C2823" : "#F1EBE2"
    readonly property color line: root.dark ? "#35302A" : "#E8E0D4"
    readonly property color ink: root.dark ? "#F5F0E8" : "#221D17"
    readonly property color faint: root.dark ? "#A89F93" : "#766C60"
    readonly property color accent: root.dark ? "#E58A63" : "#A9482A"
    readonly property color accentInk: root.dark ? "#2A130A" : "#FFFFFF"
    readonly property color wash: root.dark ? "#3A251B" : "#F7E5DB"
    readonly property color good: root.dark ? "#8CC29A" : "#3D7A4F"
    readonly property color bad: root.dark ? "#F08A7E" : "#B3261E"

    readonly property int gap: 8
    readonly property int space: 12
    readonly property int pad: 20
    readonly property int radius: 18
    readonly property int touch: 48
    readonly property int column: 620

    readonly property int display: 30
    readonly property int title: 20
    readonly property int body: 16
    readonly property int small: 14
    readonly property int caption: 12
}
