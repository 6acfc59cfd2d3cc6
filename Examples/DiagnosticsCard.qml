pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QuorvixDemo

/// Diagnostics: calls that a store does not normally make, such as failing ones.
Rectangle {
    id: root

    required property DiagnosticModel diagnostics

    implicitHeight: content.implicitHeight + StoreTheme.pad
    radius: StoreTheme.radius + 4
    color: StoreTheme.card
    border.color: StoreTheme.line

    ColumnLayout {
        id: content

        anchors { left: parent.left; right: parent.right; top: parent.top; topMargin: StoreTheme.pad }
        spacing: 0

        RowLayout {
            Layout.leftMargin: StoreTheme.pad
            Layout.rightMargin: StoreTheme.pad
            Layout.bottomMargin: StoreTheme.gap

            Text {
                Layout.fillWidth: true
                text: qsTr("Diagnostics")
                color: StoreTheme.ink
                font.pixelSize: StoreTheme.title
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            StoreButton {
                objectName: "runAllButton"
                prominent: false
                enabled: root.diagnostics.running === 0
                text: root.diagnostics.running > 0 ? qsTr("Running…") : qsTr("Run all")
                onClicked: root.diagnostics.runAll()
            }
        }
        Repeater {
            model: root.diagnostics

            DiagnosticRow {
                Layout.fillWidth: true
                onClicked: root.diagnostics.run(index)
            }
        }
    }
}
