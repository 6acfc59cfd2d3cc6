pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quorvix

/// Everything that is known about one exchange.
FocusScope {
    id: root

    required property QXRequestDetailsViewModel viewModel
    property real bottomInset: 0

    objectName: "QXRequestDetailsView"

    function back() {
        root.T.StackView.view.pop();
    }

    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Escape
    Keys.onEscapePressed: root.back()
    Keys.onBackPressed: root.back()

    Rectangle {
        anchors.fill: parent
        color: QXTheme.background
    }

    QXNavigationBar {
        id: navigationBar

        width: root.width
        title: qsTranslate("Quorvix", "Request Details")
        flickable: list

        leading: QXToolButton {
            objectName: "QXBackButton"
            symbol: "chevron.left"
            text: qsTranslate("Quorvix", "Back")
            onClicked: root.back()
        }
    }

    QXPageList {
        id: list

        objectName: "QXRequestDetailsList"
        height: root.height - y
        bar: navigationBar
        bottomInset: root.bottomInset
        keyNavigationEnabled: false
        model: root.viewModel

        Keys.onUpPressed: list.flick(0, 900)
        Keys.onDownPressed: list.flick(0, -900)

        delegate: QXRequestDetailsRowView {
            width: ListView.view.width
            columnMargin: navigationBar.columnMargin
        }
    }
}
