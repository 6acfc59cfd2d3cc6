pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls

/// A soft shadow around a card: a few outlines.
Repeater {
    id: root

    required property Rectangle card
    /// From 0 to 1.
    property real strength: 1

    model: 4

    delegate: Rectangle {
        required property int index

        anchors.fill: root.card
        anchors.margins: -2 * (index + 1)
        anchors.topMargin: -index
        radius: root.card.radius + 2 * (index + 1)
        color: QXTheme.shadow
        opacity: root.strength * (0.5 - 0.1 * index)
    }
}
