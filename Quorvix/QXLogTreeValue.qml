pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix.Text

/// The whole value of a log tree's row. A tap on it belongs to the row.
Item {
    id: root

    required property string text
    /// The value if it is too long for a text item; or null.
    required property QXTextDocument document
    /// The list, which shows the visible part of a document.
    required property Flickable page

    implicitHeight: document ? blocks.height : label.implicitHeight

    QXText {
        id: label

        objectName: "QXLogTreeWholeValue"
        width: parent.width
        visible: root.document === null
        text: root.text
        font: QXTheme.text(14, Font.Normal)
        color: QXTheme.secondaryLabel
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    Column {
        id: blocks

        width: parent.width

        Repeater {
            model: root.document ? 1 : 0

            delegate: QXTextBlock {
                objectName: "QXLogTreeWholeValue"
                width: blocks.width
                page: root.page
                document: root.document
                view.enabled: false
                activeFocusOnTab: false
            }
        }
    }
}
