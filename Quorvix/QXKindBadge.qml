import QtQuick
import Quorvix.Controls

/// The kind of a log tree node's value: a word on a background colour.
Rectangle {
    id: root

    /// A QXApiValueKind.
    required property int kind
    required property string name

    /// In the order of QXApiValueKind.
    readonly property list<color> colors: [QXTheme.indigoFill, QXTheme.tealFill, QXTheme.greenFill, QXTheme.blueFill,
        QXTheme.orangeFill, QXTheme.grayFill]

    objectName: "QXLogTreeBadge"
    implicitWidth: label.implicitWidth
    implicitHeight: label.implicitHeight
    radius: 5
    color: colors[kind]

    QXText {
        id: label

        padding: 3
        text: root.name
        font: QXTheme.text(11, Font.DemiBold)
        color: QXTheme.onColor
        Accessible.ignored: true
    }
}
