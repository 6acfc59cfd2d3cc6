import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuorvixDemo

/// One of the diagnostics: makes its call when it is tapped, and shows the result.
AbstractButton {
    id: root

    required property int index
    required property string key
    required property string title
    required property string call
    required property string result

    objectName: "diagnostic-" + root.key
    implicitHeight: 64
    leftPadding: StoreTheme.pad
    rightPadding: StoreTheme.pad

    Accessible.role: Accessible.Button
    Accessible.name: root.title

    background: Rectangle {
        color: root.down ? StoreTheme.field : "transparent"

        Rectangle {
            anchors { left: parent.left; right: parent.right; top: parent.top; leftMargin: StoreTheme.pad }
            visible: root.index > 0
            height: 1
            color: StoreTheme.line
        }
    }
    contentItem: RowLayout {
        spacing: StoreTheme.space

        ColumnLayout {
            spacing: 2

            Text {
                Layout.fillWidth: true
                text: root.title
                color: StoreTheme.ink
                font.pixelSize: StoreTheme.small + 1
                elide: Text.ElideRight
                Accessible.ignored: true
            }
            Text {
                Layout.fillWidth: true
                text: root.call
                color: StoreTheme.faint
                font.pixelSize: StoreTheme.caption
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        Text {
            objectName: "diagnosticResult-" + root.key
            Layout.maximumWidth: root.width * 0.45
            text: root.result
            color: StoreTheme.ink
            font.pixelSize: StoreTheme.caption
            horizontalAlignment: Text.AlignRight
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
        }
    }
}
