pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix.Screens

/// The rows of a log tree, opened and closed by a tap or with the keyboard.
QXPageList {
    id: root

    required property QXLogTreeViewModel viewModel

    readonly property int pageRows: Math.max(1, Math.floor(height / (currentItem?.height ?? QXTheme.touchTarget)) - 1)

    /// Requests the menu of a row; @p position is in the coordinates of @p item.
    signal menuRequested(int row, Item item, point position)

    objectName: "QXLogTreeList"
    pixelAligned: true
    model: viewModel

    Accessible.role: Accessible.Tree

    Keys.onPressed: event => {
        event.accepted = true;
        if (event.matches(StandardKey.Copy))
            root.viewModel.copy(root.currentIndex);
        else
            event.accepted = root.handleKey(event.key, event.modifiers);
    }

    delegate: QXLogTreeRow {
        id: row

        required property int index

        width: ListView.view.width
        columnMargin: root.bar.columnMargin
        indentationWidth: 20
        isCurrent: ListView.isCurrentItem && root.highlightsCurrentRow && root.activeFocus
        onClicked: {
            root.selectRow(index);
            root.viewModel.toggle(index);
        }
        onMenuRequested: position => {
            root.selectRow(index);
            root.menuRequested(index, row, position);
        }
    }

    function setCurrentRow(row: int) {
        root.currentIndex = Math.max(0, Math.min(row, root.count - 1));
    }

    function requestMenu() {
        if (root.currentItem)
            root.menuRequested(root.currentIndex, root.currentItem, Qt.point(root.width / 2, root.currentItem.height));
    }

    function handleKey(key: int, modifiers: int): bool {
        switch (key) {
        case Qt.Key_Return:
        case Qt.Key_Enter:
        case Qt.Key_Space:
            root.viewModel.toggle(root.currentIndex);
            return true;
        case QXTheme.isMirrored ? Qt.Key_Left : Qt.Key_Right:
            root.setCurrentRow(root.viewModel.expand(root.currentIndex));
            return true;
        case QXTheme.isMirrored ? Qt.Key_Right : Qt.Key_Left:
            root.setCurrentRow(root.viewModel.collapse(root.currentIndex));
            return true;
        case Qt.Key_Home:
            root.setCurrentRow(0);
            return true;
        case Qt.Key_End:
            root.setCurrentRow(root.count - 1);
            return true;
        case Qt.Key_PageUp:
            root.setCurrentRow(root.currentIndex - root.pageRows);
            return true;
        case Qt.Key_PageDown:
            root.setCurrentRow(root.currentIndex + root.pageRows);
            return true;
        case Qt.Key_Menu:
            root.requestMenu();
            return true;
        case Qt.Key_F10:
            if (modifiers !== Qt.ShiftModifier)
                return false;
            root.requestMenu();
            return true;
        default:
            return false;
        }
    }
}
