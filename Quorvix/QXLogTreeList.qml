pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix

/// The rows of a log tree, opened and closed by a tap or with the keyboard.
QXPageList {
    id: root

    required property QXLogTreeViewModel viewModel
    /// A row that has been tapped stands out no longer than it is pressed.
    property bool followsKeyboard: false

    readonly property int pageRows: Math.max(1, Math.floor(height / (currentItem?.height ?? QXTheme.touchTarget)) - 1)

    /// The menu of a row is asked for, at a point of its item.
    signal menuRequested(int row, Item item, point position)

    objectName: "QXLogTreeList"
    pixelAligned: true
    model: viewModel

    Accessible.role: Accessible.Tree

    Keys.onPressed: event => {
        root.followsKeyboard = true;
        event.accepted = true;
        if (event.matches(StandardKey.Copy))
            root.viewModel.copy(root.currentIndex);
        else
            event.accepted = root.actOn(event.key, event.modifiers);
    }

    delegate: QXLogTreeRow {
        id: row

        required property int index

        width: ListView.view.width
        columnMargin: root.bar.columnMargin
        indentationWidth: 20
        isCurrent: ListView.isCurrentItem && root.followsKeyboard && root.activeFocus
        onClicked: {
            root.take(index);
            root.viewModel.toggle(index);
        }
        onMenuRequested: position => {
            root.take(index);
            root.menuRequested(index, row, position);
        }
    }

    /// What the pointer acts on is where the keyboard goes on.
    function take(row: int) {
        root.followsKeyboard = false;
        root.currentIndex = row;
        root.forceActiveFocus();
    }

    function goTo(row: int) {
        root.currentIndex = Math.max(0, Math.min(row, root.count - 1));
    }

    function requestMenu() {
        if (root.currentItem)
            root.menuRequested(root.currentIndex, root.currentItem, Qt.point(root.width / 2, root.currentItem.height));
    }

    function actOn(key: int, modifiers: int): bool {
        switch (key) {
        case Qt.Key_Return:
        case Qt.Key_Enter:
        case Qt.Key_Space:
            root.viewModel.toggle(root.currentIndex);
            return true;
        case QXTheme.isMirrored ? Qt.Key_Left : Qt.Key_Right:
            root.goTo(root.viewModel.expand(root.currentIndex));
            return true;
        case QXTheme.isMirrored ? Qt.Key_Right : Qt.Key_Left:
            root.goTo(root.viewModel.collapse(root.currentIndex));
            return true;
        case Qt.Key_Home:
            root.goTo(0);
            return true;
        case Qt.Key_End:
            root.goTo(root.count - 1);
            return true;
        case Qt.Key_PageUp:
            root.goTo(root.currentIndex - root.pageRows);
            return true;
        case Qt.Key_PageDown:
            root.goTo(root.currentIndex + root.pageRows);
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
