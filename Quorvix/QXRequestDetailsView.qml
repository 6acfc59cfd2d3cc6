pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls
import Quorvix.Text
import Quorvix.Screens

/// The details screen of one exchange. It owns its model.
QXStackScreen {
    id: root

    required property QXRequestDetailsViewModel viewModel
    property bool _showShareOptions: false

    // The groups that are expanded.
    readonly property bool _showRequestCookies: viewModel._showRequestCookies
    readonly property bool _showResponseCookies: viewModel._showResponseCookies
    readonly property bool _showResponseCache: viewModel._showResponseCache
    readonly property bool _showLogTree: viewModel._logTreeDestination !== undefined

    objectName: "QXRequestDetailsView"
    title: qsTranslate("Quorvix", "Request Details")
    flickable: scroller
    finder: QXTextFinder {}
    trailing: QXToolButton {
        id: shareButton

        objectName: "QXShareButton"
        symbol: "square.and.arrow.up"
        text: qsTranslate("Quorvix", "Share Request")
        onClicked: root._showShareOptions = true
    }

    T.StackView.onActivated: root.viewModel._logTreeDestination = undefined

    QXPage {
        id: scroller

        objectName: "QXRequestDetailsPage"
        height: root.height - y
        bar: root.navigationBar
        safeArea: root.presentationLayer.safeArea

        Repeater {
            model: root.viewModel

            delegate: QXRequestSectionView {
                width: scroller.width
                viewModel: root.viewModel
                page: scroller
                columnMargin: root.navigationBar.columnMargin
                finder: root.finder as QXTextFinder
                onMenuRequested: (item, position, text) => valueMenu.openFor(item, position, text)
                onBodyMenuRequested: (block, position) => bodyMenu.openFor(block, position, index)
            }
        }
    }

    QXTextMenu {
        id: valueMenu

        property string text

        presentationLayer: root.presentationLayer
        page: scroller
        onCopyRequested: root.viewModel.copyValue(valueMenu.text)
        onDecodeRequested: root.viewModel.decodeValue(valueMenu.text)

        function openFor(item: Item, position: point, text: string) {
            valueMenu.text = text;
            valueMenu.canDecode = root.viewModel.canDecodeValue(text);
            valueMenu.open(item, position.x, position.y);
        }
    }

    QXTextMenu {
        id: bodyMenu

        property int row

        canFind: true
        presentationLayer: root.presentationLayer
        page: scroller
        onCopyRequested: root.viewModel.copyBody(bodyMenu.row)
        onCopySelectionRequested: root.viewModel.copyValue(bodyMenu.block.view.selectedText())
        onDecodeRequested: root.viewModel.decodeBody(bodyMenu.row)
        onFindRequested: root.find()

        function openFor(block: QXTextBlock, position: point, row: int) {
            bodyMenu.block = block;
            bodyMenu.row = row;
            bodyMenu.canDecode = root.viewModel.canDecodeBody(row);
            bodyMenu.open(block, position.x, position.y);
        }
    }

    Connections {
        target: root.viewModel

        function onDecodableChanged() {
            bodyMenu.canDecode = root.viewModel.canDecodeBody(bodyMenu.row);
        }
    }

    QXConfirmationDialog {
        presentationLayer: root.presentationLayer
        presented: root._showShareOptions
        source: shareButton
        title: qsTranslate("Quorvix", "Share Request")
        onDismissRequested: root._showShareOptions = false

        QXConfirmationAction {
            objectName: "QXShareCurl"
            text: qsTranslate("Quorvix", "Share cURL")
            onTriggered: root.viewModel.shareCurl()
        }

        QXConfirmationAction {
            objectName: "QXShareHarFile"
            text: qsTranslate("Quorvix", "Share HAR File")
            onTriggered: root.viewModel.shareHarFile()
        }

        QXConfirmationAction {
            objectName: "QXShareMockServerFile"
            text: qsTranslate("Quorvix", "Share Mock Server File")
            onTriggered: root.viewModel.shareMockServerFile()
        }

        QXConfirmationAction {
            objectName: "QXShareSwiftModel"
            text: qsTranslate("Quorvix", "Share Swift Model")
            onTriggered: root.viewModel.shareSwiftModel()
        }

        QXConfirmationAction {
            objectName: "QXShareRawDetails"
            text: qsTranslate("Quorvix", "Share Raw Details")
            onTriggered: root.viewModel.shareRawDetails()
        }
    }

    QXPresentations {
        presentationLayer: root.presentationLayer
        model: root.viewModel
        alertTitle: root.viewModel._alertTitle
    }

    on_ShowLogTreeChanged: {
        if (_showLogTree)
            root.showLogTree();
    }
    Component.onCompleted: root.viewModel.belongTo(root)

    function showLogTree() {
        (root.T.StackView.view as QXNavigationStack).open(Qt.resolvedUrl("QXLogTreeView.qml"), {
            presentationLayer: root.presentationLayer,
            viewModel: root.viewModel.makeLogTree(),
            requestPath: root.viewModel._logTreeDestination.requestPath
        });
    }
}
