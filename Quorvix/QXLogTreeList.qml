pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix.Screens

/// The rows of a log tree, opened and closed by a tap or with the keyboard.
QXPageList {
    id: root

    required property QXLogTreeViewModel viewModel
    /// Whether the current row is highlighted while the find field has the keyboard focus.
    property bool isFinding: false

    /// Requests the menu of a row; @p position is in the coordinates of @p item.
    signal menuRequested(int row, Item item, point position)

    objectName: "QXLogTreeList"
    pixelAligned: true
    model: viewModel

    Accessible.role: Accessible.Tree

    Keys.onPressed: event => {
        const isCopy = event.matches(StandardKey.Copy);
        if (isCopy)
            root.viewModel.copy(root.currentIndex);
        if (isCopy || root.handleKey(event.key, event.modifiers))
            event.accepted = true;
    }

    delegate: QXLogTreeRow {
        id: row

        width: ListView.view.width
        page: root
        indentationWidth: 20
        isCurrent: ListView.isCurrentItem && root.highlightsCurrentRow && (root.activeFocus || root.isFinding)
        onClicked: {
            root.selectRow(index);
            root.toggleRow(row);
        }
        onMenuRequested: position => {
            root.selectRow(index);
            root.menuRequested(index, row, position);
        }
    }

    /// Opens or closes a row: its children, or its whole value.
    function toggleRow(row: QXLogTreeRow) {
        root.viewModel.toggle(row.index);
        if (row.canUnfold)
            root.viewModel.toggleValue(row.index);
    }

    /// Scrolls through a current row that is larger than the list. Returns whether there was more to see.
    function scrollInRow(by: int): bool {
        const row = root.currentItem;
        if (!row || row.height <= root.height)
            return false;
        const above = root.contentY - row.y;
        const below = row.y + row.height - root.contentY - root.height + root.bottomMargin;
        const distance = Math.min(by < 0 ? above : below, QXTheme.touchTarget);
        if (distance <= 0)
            return false;
        root.contentY += by * distance;
        return true;
    }

    /// Makes a row the current one, and scrolls it to the middle if it was not in view.
    function showRow(row: int) {
        const item = root.itemAtIndex(row);
        const isInView = item && item.y >= root.contentY
                       && item.y + item.height <= root.contentY + root.height - root.bottomMargin;
        root.highlightsCurrentRow = true;
        root.currentIndex = row;
        if (!isInView)
            root.positionViewAtIndex(row, ListView.Center);
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
            if (root.currentItem)
                root.toggleRow(root.currentItem);
            return true;
        case QXTheme.isMirrored ? Qt.Key_Left : Qt.Key_Right:
            if (root.currentItem?.canUnfold && !root.currentItem.isUnfolded)
                root.viewModel.toggleValue(root.currentIndex);
            else
                root.setCurrentRow(root.viewModel.expand(root.currentIndex));
            return true;
        case QXTheme.isMirrored ? Qt.Key_Right : Qt.Key_Left:
            if (root.currentItem?.isUnfolded)
                root.viewModel.toggleValue(root.currentIndex);
            else
                root.setCurrentRow(root.viewModel.collapse(root.currentIndex));
            return true;
        case Qt.Key_Up:
            return root.scrollInRow(-1);
        case Qt.Key_Down:
            return root.scrollInRow(1);
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
