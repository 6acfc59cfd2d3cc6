pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls
import Quorvix.Screens

/// The list of captured exchanges, with the search field above it.
FocusScope {
    id: root

    required property QXRequestListViewModel viewModel
    required property QXSafeArea safeArea

    signal close
    signal breakpointsRequested
    signal rowChosen(int row)

    function focusSearch() {
        search.forceActiveFocus();
        search.selectAll();
    }

    Keys.onShortcutOverride: event => event.accepted = event.matches(StandardKey.Find)
    Keys.onPressed: event => {
        event.accepted = event.matches(StandardKey.Find);
        if (event.accepted)
            root.focusSearch();
    }

    Rectangle {
        anchors.fill: parent
        color: QXTheme.background
    }

    QXNavigationBar {
        id: navigationBar

        objectName: "QXRequestListBar"
        width: root.width
        title: qsTranslate("Quorvix", "Network Requests")
        flickable: list

        leading: QXToolButton {
            objectName: "QXCloseButton"
            symbol: "xmark"
            text: qsTranslate("Quorvix", "Close")
            onClicked: root.close()
        }
        trailing: [
            QXToolButton {
                objectName: "QXBreakpointsButton"
                symbol: "pause.circle"
                text: qsTranslate("Quorvix", "Breakpoints")
                onClicked: root.breakpointsRequested()
            },
            QXToolButton {
                objectName: "QXTrashButton"
                symbol: "trash"
                text: qsTranslate("Quorvix", "Clear requests")
                onClicked: root.viewModel.clear()
            },
            QXToolButton {
                objectName: "QXExportButton"
                symbol: "square.and.arrow.up"
                text: qsTranslate("Quorvix", "Export requests")
                onClicked: root.viewModel.exportAll()
            }
        ]
        accessory: QXSearchField {
            id: search

            width: parent.width
            placeholderText: qsTranslate("Quorvix", "Search requests...")
            text: root.viewModel._searchText
            onTextChanged: root.viewModel._searchText = text
            onActiveFocusChanged: {
                if (activeFocus)
                    root.viewModel.prepareSearch();
            }
            KeyNavigation.down: list
        }
    }

    QXPageList {
        id: list

        objectName: "QXRequestList"
        height: root.height - y
        bar: navigationBar
        safeArea: root.safeArea
        model: root.viewModel
        KeyNavigation.up: search

        Keys.onPressed: event => {
            if (event.matches(StandardKey.Copy))
                root.viewModel.copyUrl(list.currentIndex);
        }
        Keys.onReturnPressed: list.openCurrent()
        Keys.onEnterPressed: list.openCurrent()

        delegate: QXRequestRowView {
            required property int index

            width: ListView.view.width
            isCurrent: ListView.isCurrentItem && list.highlightsCurrentRow && list.activeFocus
            onClicked: {
                list.selectRow(index);
                root.rowChosen(index);
            }

            // The view keeps a row that it does not need now, for later; assistive technology must not find it.
            ListView.onPooled: visible = false
            ListView.onReused: visible = true
        }

        function openCurrent() {
            if (list.currentIndex >= 0)
                root.rowChosen(list.currentIndex);
        }
    }

    Connections {
        target: root.viewModel

        function onSearchAboutToChange() {
            list.currentIndex = -1;
            list.scrollToTop();
        }
    }

    QXListAnchor {
        view: list
        // The user comes back to the row that he has opened.
        keepsCurrentRow: root.T.StackView.status !== T.StackView.Active || returned.running
    }

    // What is recorded in the moment of the return, when nothing moves, still counts as earlier.
    Timer {
        id: returned

        interval: QXTheme.duration
    }

    T.StackView.onActivated: returned.start()
}
