import QtQuick
import Quorvix.Controls

/// The beginning of the shared text.
Rectangle {
    id: root

    required property string text

    implicitHeight: Math.min(preview.implicitHeight, 8 * metrics.height + 24)
    radius: QXTheme.cornerRadius
    color: QXTheme.elevatedBackground
    clip: true

    FontMetrics {
        id: metrics

        font: preview.font
    }

    QXText {
        id: preview

        objectName: "QXActivityPreview"
        // Code reads from left to right in every language.
        LayoutMirroring.enabled: false
        width: parent.width
        padding: 12
        text: root.text
        font: QXTheme.monospaced
        wrapMode: Text.WrapAnywhere
        maximumLineCount: 8
        elide: Text.ElideRight
    }
}
