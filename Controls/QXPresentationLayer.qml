import QtQuick
import Quorvix.Controls

/// The parent of sheets and alerts. They lie above a screen and over each other; the topmost has the keyboard
/// focus.
Item {
    id: root

    required property QXSafeArea safeArea
    /// The visible sheets and alerts, the topmost last.
    property var presented: []
    readonly property Item topmost: presented.length > 0 ? presented[presented.length - 1] : null
    readonly property bool isPresenting: topmost !== null

    function present(modal: Item) {
        root.presented = root.presented.concat([modal]);
    }

    function dismiss(modal: Item) {
        root.presented = root.presented.filter(other => other !== modal);
    }
}
