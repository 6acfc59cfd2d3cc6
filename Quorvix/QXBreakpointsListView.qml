pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls
import Quorvix.Screens

/// The list of breakpoint rules that are switched on. The user deletes a row with a swipe, with the Delete
/// key, or in edit mode.
FocusScope {
    id: root

    property bool isEditing: false
    readonly property alias count: list.count

    readonly property QXBreakpointsViewModel viewModel: QXBreakpointsViewModel {}

    objectName: "QXBreakpointsListView"
    implicitHeight: list.count === 0 ? empty.height : Math.max(QXTheme.touchTarget, list.contentHeight)

    QXText {
        id: empty

        objectName: "QXNoBreakpoints"
        anchors.left: parent.left
        anchors.right: parent.right
        padding: QXTheme.margin
        visible: list.count === 0
        text: qsTranslate("Quorvix", "No breakpoints yet.")
        font: QXTheme.subheadline
        color: QXTheme.secondaryLabel
        wrapMode: Text.Wrap
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    ListView {
        id: list

        anchors.fill: parent
        focus: true
        activeFocusOnTab: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds // further down, the sheet is pulled
        cacheBuffer: 0 // as in QXPageList
        currentIndex: -1
        model: root.viewModel
        onCountChanged: {
            if (count === 0)
                root.isEditing = false;
        }

        Accessible.role: Accessible.List
        Accessible.name: qsTranslate("Quorvix", "Breakpoints")

        Keys.onDeletePressed: root.viewModel.deleteRules([list.currentIndex])
        Keys.onPressed: event => {
            event.accepted = event.matches(StandardKey.Copy);
            if (event.accepted)
                root.viewModel.copy(list.currentIndex);
        }

        QXFocusReason {
            item: list
            onIsVisualChanged: {
                if (isVisual && list.currentIndex < 0 && list.count > 0)
                    list.currentIndex = 0;
            }
        }

        T.ScrollBar.vertical: QXScrollBar {}

        delegate: QXBreakpointRowView {
            required property int index

            width: ListView.view.width
            isEditing: root.isEditing
            isCurrent: ListView.isCurrentItem && list.activeFocus
            onDeleteRequested: root.viewModel.deleteRules([index])
        }
    }

    QXScrollHint {
        area: list
        ground: QXTheme.secondaryBackground
        visible: list.count > 0
    }
}
