pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls

/// What lies beneath the floating button, as through frosted glass.
QXBackdrop {
    pane: QXFrost {
        source: picture

        ShaderEffectSource {
            id: picture

            anchors.fill: parent
            visible: false
            live: false
            // A quarter of the button: what is smaller than that is lost.
            textureSize: "13x13"
        }
    }
}
