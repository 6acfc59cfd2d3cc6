import QtQuick
import Quorvix.Controls
import Quorvix.Text

/// The menu of a read-only text: copies the whole text or the selection, decodes the text, and finds in it.
QXContextMenu {
    id: root

    /// The block whose selection can be copied; null for a text without one.
    property QXTextBlock block: null
    property bool canDecode: false
    property bool canFind: false

    signal copyRequested
    signal copySelectionRequested
    signal decodeRequested
    signal findRequested

    QXMenuItem {
        objectName: "QXCopyValueItem"
        text: qsTranslate("Quorvix", "Copy")
        symbol: "doc.on.doc"
        onTriggered: root.copyRequested()
    }

    QXMenuItem {
        objectName: "QXCopySelectionItem"
        visible: root.block?.hasSelection ?? false
        text: qsTranslate("Quorvix", "Copy Selection")
        symbol: "doc.on.doc"
        onTriggered: root.copySelectionRequested()
    }

    QXMenuItem {
        objectName: "QXDecodeValueItem"
        visible: root.canDecode
        text: qsTranslate("Quorvix", "Decode Base64")
        symbol: "doc.text"
        onTriggered: root.decodeRequested()
    }

    QXMenuItem {
        objectName: "QXFindItem"
        visible: root.canFind
        text: qsTranslate("Quorvix", "Find")
        symbol: "magnifyingglass"
        onTriggered: root.findRequested()
    }
}
