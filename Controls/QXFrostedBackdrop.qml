pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls

/// The frosted background of the floating button.
QXBackdrop {
    pane: QXFrost {
        source: picture

        ShaderEffectSource {
            id: picture

            anchors.fill: parent
            visible: false
            live: false
            // A quarter of the button's size, so that stretching the picture blurs small details.
            textureSize: "13x13"
        }
    }
}
