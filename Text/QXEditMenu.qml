import QtQuick
import Quorvix.Controls

/// The menu of a text that is edited, with the commands that otherwise need a keyboard.
QXContextMenu {
    id: root

    required property QXTextArea area

    QXMenuItem {
        objectName: "QXCutItem"
        visible: root.area.hasSelection && !root.area.editor.isReadOnly
        text: qsTranslate("Quorvix", "Cut")
        onTriggered: root.area.editor.cut()
    }

    QXMenuItem {
        objectName: "QXCopyItem"
        visible: root.area.hasSelection
        text: qsTranslate("Quorvix", "Copy")
        onTriggered: root.area.editor.copySelection()
    }

    QXMenuItem {
        objectName: "QXPasteItem"
        visible: !root.area.editor.isReadOnly
        text: qsTranslate("Quorvix", "Paste")
        onTriggered: root.area.editor.paste()
    }

    QXMenuItem {
        objectName: "QXSelectAllItem"
        text: qsTranslate("Quorvix", "Select All")
        onTriggered: root.area.editor.selectAll()
    }

    QXMenuItem {
        objectName: "QXUndoItem"
        visible: root.area.editor.canUndo
        text: qsTranslate("Quorvix", "Undo")
        onTriggered: root.area.editor.undo()
    }

    QXMenuItem {
        objectName: "QXRedoItem"
        visible: root.area.editor.canRedo
        text: qsTranslate("Quorvix", "Redo")
        onTriggered: root.area.editor.redo()
    }
}
