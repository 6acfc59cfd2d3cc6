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
    /// Finds in what the screen shows; null for a screen without a find field.
    property alias finder: findPlace.finder
    readonly property alias isFinding: findPlace.isFinding
    /// What gets the keyboard focus after the find field.
    property Item content: flickable

    readonly property alias navigationBar: bar
    readonly property real bottomInset: presentationLayer.safeArea.bottom

    onLeaveRequested: {
        if (!findPlace.end())
            root.leave();
    }

    Keys.onShortcutOverride: event => event.accepted = findPlace.commandOf(event) !== 0
    Keys.onPressed: event => event.accepted = findPlace.perform(findPlace.commandOf(event))

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
        accessory: QXFindPlace {
            id: findPlace

            width: parent?.width ?? 0
            content: root.content
        }
    }

    function find() {
        findPlace.perform(QXFinder.Find);
    }

    function leave() {
        (root.T.StackView.view as QXNavigationStack).leave();
    }
}
