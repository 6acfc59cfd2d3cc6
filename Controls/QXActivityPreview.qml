pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls

/// The first lines of the shared text. A line that is too long ends with an ellipsis, because code that breaks
/// inside a word is hard to read.
Rectangle {
    id: root

    required property UIActivityViewController controller

    objectName: "QXActivityPreview"
    implicitHeight: column.implicitHeight
    radius: QXTheme.cornerRadius
    color: QXTheme.elevatedBackground

    Accessible.role: Accessible.StaticText
    Accessible.name: QXShortText.beginning(root.controller.previewText)

    Column {
        id: column

        // Code reads from left to right in every language.
        LayoutMirroring.enabled: false
        LayoutMirroring.childrenInherit: true
        width: parent.width
        padding: 12

        Repeater {
            model: root.controller.previewLines

            delegate: QXText {
                required property string modelData

                width: root.width - 2 * column.padding
                text: modelData
                font: QXTheme.monospaced
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }
}
