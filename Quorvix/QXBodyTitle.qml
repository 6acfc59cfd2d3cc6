import QtQuick
import Quorvix.Controls

/// The heading above a body: the section's title, and the button that shows the body as a tree.
Item {
    id: root

    required property string text
    required property QXPage page
    property bool canOpen: true

    signal treeRequested

    implicitHeight: Math.max(treeButton.height, title.height) + QXTheme.spacing

    QXSectionTitle {
        id: title

        anchors.left: parent.left
        anchors.right: treeButton.left
        anchors.rightMargin: QXTheme.spacing
        anchors.verticalCenter: treeButton.verticalCenter
        text: root.text
    }

    QXRoundButton {
        id: treeButton

        objectName: "QXLogTreeButton"
        anchors.right: parent.right
        symbol: "flowchart"
        text: qsTranslate("Quorvix", "Show as tree")
        enabled: root.canOpen
        onClicked: root.treeRequested()
        onVisualFocusChanged: root.page.revealFocused(treeButton)
    }
}
