import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls
import Quorvix.Screens

/// The inspector's screens, beginning with the request list. They cover the host's window.
QXScreen {
    id: root

    /// The layer that shows the sheets and alerts of these screens.
    required property QXPresentationLayer presentationLayer
    property bool showBreakpoints: false

    readonly property QXRequestListViewModel viewModel: QXRequestListViewModel {}
    readonly property QXSafeArea safeArea: presentationLayer.safeArea

    /// The user wants to close the inspector's screens.
    signal close

    objectName: "QXRequestListView"

    onLeaveRequested: root.close()

    QXFocusFence {}

    Rectangle {
        anchors.fill: parent
        color: QXTheme.background
    }

    QXCurtain {
        anchors.fill: parent
        anchors.topMargin: root.safeArea.top
        anchors.leftMargin: root.safeArea.left
        anchors.rightMargin: root.safeArea.right
        enabled: !root.presentationLayer.isPresenting

        QXNavigationStack {
            id: stack

            anchors.fill: parent
            focus: true
        }
    }

    QXSheet {
        id: breakpointsSheet

        objectName: "QXBreakpointsSheet"
        presentationLayer: root.presentationLayer
        presented: root.showBreakpoints
        title: qsTranslate("Quorvix", "Breakpoints")
        contentHeight: breakpoints.implicitHeight + breakpoints.anchors.bottomMargin
        trailing: QXTextButton {
            objectName: "QXBreakpointsEditButton"
            visible: breakpoints.count > 0
            text: breakpoints.isEditing ? qsTranslate("Quorvix", "Finish") : qsTranslate("Quorvix", "Edit")
            font: QXTheme.barItem
            onClicked: breakpoints.isEditing = !breakpoints.isEditing
        }
        onDismissRequested: root.showBreakpoints = false

        QXBreakpointsListView {
            id: breakpoints

            anchors.fill: parent
            // The rows end above the round corners of a card.
            anchors.bottomMargin: QXTheme.cardRadius
            focus: true
        }
    }

    QXPresentations {
        presentationLayer: root.presentationLayer
        model: root.viewModel
        alertTitle: qsTranslate("Quorvix", "Export Failed")
    }

    Component.onCompleted: {
        const page = stack.push(Qt.resolvedUrl("QXRequestListPage.qml"), {
            viewModel: root.viewModel,
            safeArea: root.safeArea
        }, T.StackView.Immediate) as QXRequestListPage;
        page.close.connect(root.close);
        page.breakpointsRequested.connect(() => {
            root.showBreakpoints = true;
            breakpointsSheet.appear(); // it may be leaving
        });
        page.rowChosen.connect(root.openDetails);
        root.viewModel.belongTo(root);
    }

    function openDetails(row: int) {
        // The row may have gone since it was pressed.
        const details = root.viewModel.makeDetails(row);
        if (!details)
            return;
        stack.open(Qt.resolvedUrl("QXRequestDetailsView.qml"), {
            presentationLayer: root.presentationLayer,
            viewModel: details
        });
    }
}
