import QtQuick
import Quorvix.Controls

/// Shows the reason why there is no log tree.
QXScrollArea {
    id: root

    required property string message
    required property QXSafeArea safeArea

    /// The height without what an item floats over.
    readonly property real freeHeight: height + safeArea.bottom - safeArea.floatTop

    objectName: "QXLogTreeFailure"
    contentHeight: column.implicitHeight <= freeHeight ? height : column.implicitHeight + height - freeHeight
    activeFocusOnTab: visible && interactive

    Column {
        id: column

        anchors.horizontalCenter: parent.horizontalCenter
        // The content is a little above the exact middle, where it looks centred.
        y: Math.max(0, (root.freeHeight - height) * 0.45)
        width: root.width - 2 * QXTheme.columnMargin(root.width)
        topPadding: QXTheme.margin
        bottomPadding: QXTheme.margin
        spacing: QXTheme.spacing

        QXIcon {
            anchors.horizontalCenter: parent.horizontalCenter
            symbol: "exclamationmark.triangle"
            size: QXTheme.largeTitle.pixelSize
            color: QXTheme.orange
        }

        QXText {
            width: parent.width
            text: qsTranslate("Quorvix", "Log Parse Error")
            font: QXTheme.headline
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        QXText {
            objectName: "QXLogTreeFailureText"
            width: parent.width
            text: root.message
            font: QXTheme.subheadline
            color: QXTheme.secondaryLabel
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
    }
}
