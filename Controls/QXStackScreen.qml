import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A screen on a navigation stack. The button in its bar, Esc and the Back key remove it.
QXScreen {
    id: root

    /// The parent of the sheets, alerts and menus of this screen.
    required property QXPresentationLayer presentationLayer
    required property string title
    /// The view that scrolls below the bar; without it the title stays small.
    property alias flickable: bar.flickable
    property alias trailing: bar.trailing

    readonly property alias navigationBar: bar
    readonly property real bottomInset: presentationLayer.safeArea.bottom

    onLeaveRequested: root.leave()

    Rectangle {
        anchors.fill: parent
        color: QXTheme.background
    }

    QXNavigationBar {
        id: bar

        width: root.width
        title: root.title

        leading: QXToolButton {
            objectName: "QXBackButton"
            symbol: "chevron.left"
            text: qsTranslate("Quorvix", "Back")
            onClicked: root.leave()
        }
    }

    function leave() {
        root.T.StackView.view.pop();
    }
}
