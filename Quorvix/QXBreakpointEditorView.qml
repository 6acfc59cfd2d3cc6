import QtQuick
import Quorvix.Controls
import Quorvix.Text
import Quorvix.Screens

/// The editor of a held response: its status code and its body, released unchanged or with the edits.
///
/// Only the two buttons release a response. The Esc key and the Back key do nothing.
QXScreen {
    id: root

    required property QXBreakpointEditorModel model
    required property QXSafeArea safeArea

    /// The size of the text in the bar. In a narrow window it leaves room for the title.
    readonly property int barTextSize: Math.max(QXTheme.caption.pixelSize / 2,
                                                Math.min(QXTheme.barItem.pixelSize, bar.width * 15 / 320))

    objectName: "QXBreakpointEditorView"

    LayoutMirroring.enabled: QXTheme.isMirrored
    LayoutMirroring.childrenInherit: true

    QXFocusFence {}

    QXShield {
        anchors.fill: parent
    }

    Rectangle {
        anchors.fill: parent
        color: QXTheme.background
    }

    QXNavigationBar {
        id: bar

        x: root.safeArea.left
        y: root.safeArea.top
        width: parent.width - root.safeArea.left - root.safeArea.right
        title: qsTranslate("Quorvix", "Breakpoint")
        enabled: !presentations.isPresenting

        leading: QXTextButton {
            objectName: "QXContinueButton"
            text: qsTranslate("Quorvix", "Continue")
            font: root.barFont(Font.Normal)
            onClicked: root.model.continueResponse()
        }
        trailing: QXTextButton {
            objectName: "QXApplyButton"
            text: qsTranslate("Quorvix", "Apply Changes")
            font: root.barFont(Font.DemiBold)
            onClicked: root.model.applyChanges()
        }
    }

    QXBreakpointEditorForm {
        id: form

        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        anchors.bottomMargin: root.safeArea.bottom
        x: bar.x
        width: bar.width
        enabled: !presentations.isPresenting
        model: root.model
        onContextMenuRequested: position => menu.open(form.body, position.x, position.y)
    }

    QXPresentationLayer {
        id: presentations

        anchors.fill: parent
        safeArea: root.safeArea
    }

    QXProgressCard {
        presentationLayer: presentations
        task: root.model.task
    }

    QXEditMenu {
        id: menu

        presentationLayer: presentations
        area: form.body
    }

    function barFont(weight: int): font {
        return Qt.font({
            family: QXTheme.appearance.fontFamily,
            pixelSize: root.barTextSize,
            weight: weight
        });
    }
}
