import QtQuick
import Quorvix.Controls

/// Where sheets and alerts lie: above a screen, one over the other, with the keyboard on the topmost.
Item {
    id: root

    required property QXSafeArea safeArea
    /// Those on show, the topmost last.
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
