import QtQuick
import Quorvix.Controls
import Quorvix.Screens

/// A JSON body as a tree whose nodes open and close. The screen owns its model.
QXStackScreen {
    id: root

    required property QXLogTreeViewModel viewModel
    required property string requestPath

    readonly property bool hasFailed: viewModel.parseError !== undefined

    objectName: "QXLogTreeView"
    title: requestPath
    content: list
    finder: QXLogTreeFinder {
        model: root.viewModel
        currentRow: list.currentIndex
        onRowFound: row => list.showRow(row)
    }
    trailing: QXToolButton {
        objectName: "QXShareModelButton"
        symbol: "curlybraces"
        text: qsTranslate("Quorvix", "Share Swift Model")
        onClicked: root.viewModel.shareSwiftModel(root.requestPath)
    }

    QXLogTreeFailure {
        anchors.fill: parent
        anchors.topMargin: root.navigationBar.height
        anchors.bottomMargin: root.bottomInset
        visible: root.hasFailed
        message: root.viewModel.parseError ?? ""
        safeArea: root.presentationLayer.safeArea
    }

    QXLogTreeList {
        id: list

        height: root.height - y
        visible: !root.hasFailed
        bar: root.navigationBar
        safeArea: root.presentationLayer.safeArea
        viewModel: root.viewModel
        isFinding: root.isFinding
        onMenuRequested: (row, item, position) => menu.openFor(row, item, position)
    }

    QXContextMenu {
        id: menu

        property int row: -1
        property bool canDecode: false

        presentationLayer: root.presentationLayer
        page: list

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

        QXMenuItem {
            objectName: "QXFindItem"
            text: qsTranslate("Quorvix", "Find")
            symbol: "magnifyingglass"
            onTriggered: root.find()
        }

        function openFor(row: int, item: Item, position: point) {
            menu.row = row;
            menu.canDecode = root.viewModel.canDecodeBase64(row);
            menu.open(item, position.x, position.y);
        }
    }

    Connections {
        target: root.viewModel

        function onDecodableChanged() {
            menu.canDecode = root.viewModel.canDecodeBase64(menu.row);
        }
    }

    Connections {
        target: root.viewModel.task

        function onCancelled() {
            if (list.count === 0 && !root.hasFailed)
                root.leave();
        }
    }

    QXPresentations {
        presentationLayer: root.presentationLayer
        model: root.viewModel
        alertTitle: qsTranslate("Quorvix", "Share Failed")
    }

    Component.onCompleted: root.viewModel.belongTo(root)
}
