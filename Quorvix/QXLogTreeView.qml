import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls
import Quorvix

/// A JSON body as a tree whose nodes open and close.
FocusScope {
    id: root

    /// Where the sheets, alerts and menus of this screen lie.
    required property QXPresentationLayer presentationLayer
    required property QXLogTreeViewModel viewModel
    required property string requestPath
    property real bottomInset: 0

    readonly property bool hasFailed: viewModel.parseError !== undefined

    objectName: "QXLogTreeView"

    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Escape || event.key === Qt.Key_Back
    Keys.onEscapePressed: root.back()
    Keys.onBackPressed: root.back()

    Rectangle {
        anchors.fill: parent
        color: QXTheme.background
    }

    QXNavigationBar {
        id: navigationBar

        width: root.width
        title: root.requestPath

        leading: QXToolButton {
            objectName: "QXBackButton"
            symbol: "chevron.left"
            text: qsTranslate("Quorvix", "Back")
            onClicked: root.back()
        }
        trailing: QXToolButton {
            objectName: "QXShareModelButton"
            symbol: "curlybraces"
            text: qsTranslate("Quorvix", "Share Swift Model")
            onClicked: root.viewModel.shareSwiftModel(root.requestPath)
        }
    }

    QXLogTreeFailure {
        anchors.fill: parent
        anchors.topMargin: navigationBar.height
        anchors.bottomMargin: root.bottomInset
        visible: root.hasFailed
        message: root.viewModel.parseError ?? ""
    }

    QXLogTreeList {
        height: root.height - y
        visible: !root.hasFailed
        bar: navigationBar
        bottomInset: root.bottomInset
        viewModel: root.viewModel
        onMenuRequested: (row, item, position) => menu.openFor(row, item, position)
    }

    QXContextMenu {
        id: menu

        property int row: -1
        property bool canDecode: false

        presentationLayer: root.presentationLayer

        QXMenuItem {
            objectName: "QXCopyRowItem"
            text: qsTranslate("Quorvix", "Copy Key: Value")
            symbol: "doc.on.doc"
            onTriggered: root.viewModel.copy(menu.row)
        }

        QXMenuItem {
            objectName: "QXDecodeItem"
            visible: menu.canDecode
            text: qsTranslate("Quorvix", "Decode Base64")
            symbol: "doc.text"
            onTriggered: root.viewModel.decodeBase64(menu.row)
        }

        function openFor(row: int, item: Item, position: point) {
            menu.row = row;
            menu.canDecode = root.viewModel.canDecodeBase64(row);
            menu.open(item, position.x, position.y);
        }
    }

    QXPresentations {
        presentationLayer: root.presentationLayer
        model: root.viewModel
        alertTitle: qsTranslate("Quorvix", "Share Failed")
        safeAreaBottom: root.bottomInset
    }

    function back() {
        root.T.StackView.view.pop();
    }
}
